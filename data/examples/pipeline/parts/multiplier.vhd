-- Signed multiplier, of integers (the low word of the product is kept) and of fractions.

library ieee;
use ieee.std_logic_1164.all;
use ieee.numeric_std.all;
use ieee.fixed_float_types.all;
use ieee.fixed_pkg.all;

use work.bits.all;

entity multiplier is
  port (
    left     : in  word;
    right    : in  word;
    product  : out word;
    fraction : out word
  );
end entity multiplier;

architecture rtl of multiplier is

  signal full : signed(2 * word_width - 1 downto 0);

begin

  full    <= signed(left) * signed(right);
  product <= std_logic_vector(full(word_width - 1 downto 0));

  fraction <= from_fraction(resize(arg            => to_fraction(left) * to_fraction(right),
                                   size_res       => to_fraction(left),
                                   overflow_style => fixed_saturate,
                                   round_style    => fixed_round));

end architecture rtl;
