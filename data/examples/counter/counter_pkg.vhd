-- What the counter and its users agree on.

library ieee;
use ieee.std_logic_1164.all;
use ieee.numeric_std.all;

package counter_pkg is

  type direction is (up, down);

  -- The bits that hold the numbers from 0 to `highest`.
  function width_of (highest : positive) return positive;

  -- The number after `value`, which wraps around between 0 and `highest`.
  function next_value (value   : unsigned;
                       highest : positive;
                       way     : direction) return unsigned;

end package counter_pkg;

package body counter_pkg is

  function width_of (highest : positive) return positive is
    variable rest  : natural  := highest / 2;
    variable width : positive := 1;
  begin
    while rest > 0 loop
      rest  := rest / 2;
      width := width + 1;
    end loop;
    return width;
  end function width_of;

  function next_value (value   : unsigned;
                       highest : positive;
                       way     : direction) return unsigned is
  begin
    case way is
      when up =>
        if value = highest then
          return to_unsigned(0, value'length);
        end if;
        return value + 1;
      when down =>
        if value = 0 then
          return to_unsigned(highest, value'length);
        end if;
        return value - 1;
    end case;
  end function next_value;

end package body counter_pkg;
