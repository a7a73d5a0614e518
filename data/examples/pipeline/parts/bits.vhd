-- Types and small functions that every block uses.

library ieee;
use ieee.std_logic_1164.all;
use ieee.numeric_std.all;
use ieee.fixed_pkg.all;

package bits is

  constant word_width : positive := 32;

  subtype word is std_logic_vector(word_width - 1 downto 0);
  subtype octet is std_logic_vector(7 downto 0);

  -- A number from -1 to just below 1; in a word it lies in the low bits, widened with its sign.
  subtype fraction_type is sfixed(0 downto -15);

  constant zero_word : word := (others => '0');

  -- Address bits of a memory of `size` places.
  function address_width (size : positive) return positive;

  -- `value` widened to a word with its sign.
  function sign_extend (value : std_logic_vector) return word;

  function to_word (number : integer) return word;

  function to_fraction (value : word) return fraction_type;
  function from_fraction (value : fraction_type) return word;

  function is_zero (value : std_logic_vector) return std_logic;

end package bits;

package body bits is

  function address_width (size : positive) return positive is
    variable places : positive := 2;
    variable width  : positive := 1;
  begin
    while places < size loop
      places := places * 2;
      width  := width + 1;
    end loop;
    return width;
  end function address_width;

  function sign_extend (value : std_logic_vector) return word is
  begin
    return std_logic_vector(resize(signed(value), word_width));
  end function sign_extend;

  function to_word (number : integer) return word is
  begin
    return std_logic_vector(to_signed(number, word_width));
  end function to_word;

  function to_fraction (value : word) return fraction_type is
  begin
    return to_sfixed(value(fraction_type'length - 1 downto 0), 0, -15);
  end function to_fraction;

  function from_fraction (value : fraction_type) return word is
  begin
    return sign_extend(to_slv(value));
  end function from_fraction;

  function is_zero (value : std_logic_vector) return std_logic is
    constant zero : std_logic_vector(value'range) := (others => '0');
  begin
    if value = zero then
      return '1';
    end if;
    return '0';
  end function is_zero;

end package body bits;
