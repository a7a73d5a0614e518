-- Sends octets: a start bit, eight bits with the lowest first, a stop bit.

library ieee;
use ieee.std_logic_1164.all;

use work.bits.all;

entity serial_sender is
  generic (
    clocks_per_bit : positive
  );
  port (
    clock : in  std_logic;
    reset : in  std_logic;
    data  : in  octet;
    valid : in  std_logic;
    taken : out std_logic;  -- `data` was accepted in this clock
    line  : out std_logic
  );
end entity serial_sender;

architecture rtl of serial_sender is

  constant frame_length : positive := 10;

  signal frame : std_logic_vector(frame_length - 1 downto 0) := (others => '1');
  signal left  : natural range 0 to frame_length             := 0;
  signal count : natural range 0 to clocks_per_bit           := 0;
  signal start : std_logic;

begin

  start <= '1' when left = 0 and valid = '1' and reset = '0' else '0';
  taken <= start;
  line  <= frame(0);

  sending : process (clock) is
  begin
    if rising_edge(clock) then
      if reset = '1' then
        frame <= (others => '1');
        left  <= 0;
      elsif start = '1' then
        frame <= '1' & data & '0';
        left  <= frame_length;
        count <= clocks_per_bit;
      elsif count > 1 then
        count <= count - 1;
      elsif left > 0 then
        frame <= '1' & frame(frame_length - 1 downto 1);
        left  <= left - 1;
        count <= clocks_per_bit;
      end if;
    end if;
  end process sending;

end architecture rtl;
