-- Receives what `serial_sender` sends; each bit is taken in its middle.

library ieee;
use ieee.std_logic_1164.all;
use ieee.numeric_std.all;

use work.bits.all;

entity serial_receiver is
  generic (
    clocks_per_bit : positive
  );
  port (
    clock    : in  std_logic;
    reset    : in  std_logic;
    line     : in  std_logic;
    data     : out octet;
    received : out std_logic;  -- for one clock
    damaged  : out std_logic   -- with `received`: there was no stop bit
  );
end entity serial_receiver;

architecture rtl of serial_receiver is

  type state is (idle, starting, receiving, stopping);

  signal phase : state                               := idle;
  signal count : natural range 0 to clocks_per_bit   := 0;
  signal bits_left : natural range 0 to octet'length := 0;
  signal shift : octet                               := (others => '0');

begin

  data <= shift;

  receiver : process (clock) is
  begin
    if rising_edge(clock) then
      received <= '0';
      damaged  <= '0';
      if reset = '1' then
        phase <= idle;
      elsif phase = idle then
        count <= clocks_per_bit / 2;
        if line = '0' then
          phase <= starting;
        end if;
      elsif count > 1 then
        count <= count - 1;
      else
        count <= clocks_per_bit;
        case phase is
          when idle =>
            null;
          when starting =>
            bits_left <= octet'length;
            phase     <= receiving when line = '0' else idle;
          when receiving =>
            shift     <= line & shift(octet'high downto 1);
            bits_left <= bits_left - 1;
            if bits_left = 1 then
              phase <= stopping;
            end if;
          when stopping =>
            received <= '1';
            damaged  <= not line;
            phase    <= idle;
        end case;
      end if;
    end if;
  end process receiver;

end architecture rtl;
