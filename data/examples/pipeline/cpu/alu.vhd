-- All that is worked out from two operands.

library ieee;
use ieee.std_logic_1164.all;

library blocks;
use blocks.bits.all;

use work.isa.all;

entity alu is
  port (
    fn     : in  arithmetic;
    left   : in  word;
    right  : in  word;
    result : out word;
    equal  : out std_logic;
    less   : out std_logic
  );
end entity alu;

architecture rtl of alu is

  signal subtract      : std_logic;
  signal sum           : word;
  signal shifted       : word;
  signal product       : word;
  signal fraction      : word;
  signal to_right      : std_logic;
  signal with_sign     : std_logic;
  signal less_signed   : std_logic;
  signal less_unsigned : std_logic;

begin

  subtract  <= '0' when fn = fn_add else '1';
  to_right  <= '0' when fn = fn_left else '1';
  with_sign <= '1' when fn = fn_right_signed else '0';

  addition : entity blocks.adder
    port map (left      => left,
              right     => right,
              subtract  => subtract,
              sum       => sum,
              less      => less_signed,
              less_bare => less_unsigned);

  shifting : entity blocks.shifter
    port map (value      => left,
              amount     => right(4 downto 0),
              to_right   => to_right,
              arithmetic => with_sign,
              shifted    => shifted);

  multiplication : entity blocks.multiplier
    port map (left => left, right => right, product => product, fraction => fraction);

  with fn select result <=
    sum                         when fn_add | fn_subtract,
    left and right              when fn_and,
    left or right               when fn_or,
    left xor right              when fn_xor,
    shifted                     when fn_left | fn_right | fn_right_signed,
    (0 => less_signed, others => '0')   when fn_less,
    (0 => less_unsigned, others => '0') when fn_less_unsigned,
    product                     when fn_multiply,
    fraction                    when fn_multiply_fraction;

  equal <= is_zero(left xor right);
  less  <= less_signed;

end architecture rtl;
