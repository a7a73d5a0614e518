-- Adds or subtracts, with the flags that comparisons need.

library ieee;
use ieee.std_logic_1164.all;
use ieee.numeric_std.all;

use work.bits.all;

entity adder is
  port (
    left      : in  word;
    right     : in  word;
    subtract  : in  std_logic;
    sum       : out word;
    less      : out std_logic;  -- as signed numbers
    less_bare : out std_logic   -- as unsigned numbers
  );
end entity adder;

architecture rtl of adder is

  signal operand : word;
  signal total   : unsigned(word_width downto 0);

begin

  operand <= not right when subtract = '1' else right;

  total <= unsigned('0' & left) + unsigned('0' & operand) + ("" & subtract);

  sum <= std_logic_vector(total(word_width - 1 downto 0));

  less      <= '1' when signed(left) < signed(right) else '0';
  less_bare <= not total(word_width);

end architecture rtl;
