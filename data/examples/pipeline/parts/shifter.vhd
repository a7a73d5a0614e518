-- Barrel shifter: left, right, and right with the sign.

library ieee;
use ieee.std_logic_1164.all;
use ieee.numeric_std.all;

use work.bits.all;

entity shifter is
  port (
    value      : in  word;
    amount     : in  std_logic_vector(4 downto 0);
    to_right   : in  std_logic;
    arithmetic : in  std_logic;  -- to the right the sign comes in
    shifted    : out word
  );
end entity shifter;

architecture rtl of shifter is

  type stage_array is array (0 to 5) of word;

  signal stage : stage_array;
  signal fill  : std_logic;

  function mirrored (input : word) return word is
    variable result : word;
  begin
    for i in input'range loop
      result(i) := input(word_width - 1 - i);
    end loop;
    return result;
  end function mirrored;

begin

  fill <= arithmetic and to_right and value(value'high);

  -- One direction is enough: a shift to the left is one to the right between two mirrors.
  stage(0) <= value when to_right = '1' else mirrored(value);

  stages : for i in 0 to 4 generate
    constant distance : positive := 2 ** i;
    signal filler     : std_logic_vector(distance - 1 downto 0);
  begin
    filler       <= (others => fill);
    stage(i + 1) <= filler & stage(i)(word_width - 1 downto distance) when amount(i) = '1'
                    else stage(i);
  end generate stages;

  shifted <= stage(5) when to_right = '1' else mirrored(stage(5));

end architecture rtl;
