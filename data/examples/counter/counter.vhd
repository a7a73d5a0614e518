-- A counter from 0 to `highest` that can be stopped and turned round.

library ieee;
use ieee.std_logic_1164.all;
use ieee.numeric_std.all;

use work.counter_pkg.all;

entity counter is
  generic (
    highest : positive := 9
  );
  port (
    clock  : in  std_logic;
    reset  : in  std_logic;
    enable : in  std_logic;
    way    : in  direction;
    value  : out unsigned(width_of(highest) - 1 downto 0);
    at_end : out std_logic  -- the next enabled clock wraps around
  );
end entity counter;

architecture rtl of counter is

  signal count : unsigned(value'range) := (others => '0');

begin

  value <= count;

  at_end <= '1' when (way = up and count = highest) or (way = down and count = 0) else '0';

  counting : process (clock) is
  begin
    if rising_edge(clock) then
      if reset = '1' then
        count <= (others => '0');
      elsif enable = '1' then
        count <= next_value(count, highest, way);
      end if;
    end if;
  end process counting;

end architecture rtl;
