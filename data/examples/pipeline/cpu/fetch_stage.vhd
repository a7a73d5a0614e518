-- Fetches one instruction each clock, from where the last branch went.

library ieee;
use ieee.std_logic_1164.all;
use ieee.numeric_std.all;

library blocks;
use blocks.bits.all;

use work.isa.all;
use work.stages.all;

entity fetch_stage is
  port (
    clock    : in  std_logic;
    reset    : in  std_logic;
    stall    : in  std_logic;
    redirect : in  redirection;
    address  : out code_address;
    data     : in  word;
    output   : out fetched
  );
end entity fetch_stage;

architecture rtl of fetch_stage is

  signal place : code_address := (others => '0');
  signal held  : fetched      := nothing_fetched;

begin

  address <= place;
  output  <= held;

  fetching : process (clock) is
  begin
    if rising_edge(clock) then
      if reset = '1' then
        place <= (others => '0');
        held  <= nothing_fetched;
      elsif redirect.valid = '1' then
        place <= redirect.address;
        held  <= nothing_fetched;
      elsif stall = '0' then
        place <= place + 1;
        held  <= (valid => '1', behind => place + 1, code => data);
      end if;
    end if;
  end process fetching;

end architecture rtl;
