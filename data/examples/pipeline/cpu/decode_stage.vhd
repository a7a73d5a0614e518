-- Takes instructions apart and reads their registers.

library ieee;
use ieee.std_logic_1164.all;

library blocks;
use blocks.bits.all;

use work.isa.all;
use work.stages.all;

entity decode_stage is
  port (
    clock      : in  std_logic;
    reset      : in  std_logic;
    flush      : in  std_logic;
    input      : in  fetched;
    write_back : in  to_write_back;
    stall      : out std_logic;
    output     : out to_execute
  );
end entity decode_stage;

architecture rtl of decode_stage is

  signal code   : instruction;
  signal data_a : word;
  signal data_b : word;
  signal held   : to_execute := nothing_to_execute;
  signal waits  : std_logic;

begin

  code   <= decoded(input.code);
  stall  <= waits;
  output <= held;

  hazards : entity work.hazard_unit
    port map (waiting => code, ahead => held, stall => waits);

  registers : entity blocks.register_bank
    generic map (count => register_count)
    port map (clock       => clock,
              read_a      => code.a,
              read_b      => code.b,
              data_a      => data_a,
              data_b      => data_b,
              write       => write_back.write,
              write_index => write_back.target,
              write_data  => write_back.data);

  decoding : process (clock) is
  begin
    if rising_edge(clock) then
      if reset = '1' or flush = '1' or waits = '1' or input.valid = '0' then
        held <= nothing_to_execute;
      else
        held <= (valid => '1', behind => input.behind, code => code, data_a => data_a,
                 data_b => data_b);
      end if;
    end if;
  end process decoding;

end architecture rtl;
