-- The program in the machine's code memory: it works out Fibonacci numbers into a table, sends the
-- low octet of each square over the serial line, and then the high octet of a product of fractions.

library blocks;
use blocks.bits.all;

use work.isa.all;
use work.assembler.all;

package program is

  constant number_count   : positive := 12;
  constant serial_address : natural  := 16#4000#;

  constant code : word_array := (
    --      table of the numbers, r3 is the place and r4 the end
    0  => add_constant(1, 0, 0),
    1  => add_constant(2, 0, 1),
    2  => add_constant(3, 0, 0),
    3  => add_constant(4, 0, number_count),
    4  => store(1, 3, 0),
    5  => calculate(fn_add, 5, 1, 2),
    6  => calculate(fn_or, 1, 2, 0),
    7  => calculate(fn_or, 2, 5, 0),
    8  => add_constant(3, 3, 1),
    9  => branch_less(3, 4, -6),
    --      send them
    10 => add_constant(3, 0, 0),
    11 => add_constant(6, 0, serial_address),
    12 => load(7, 3, 0),
    13 => jump(15, 23),
    14 => store(8, 6, 0),
    15 => add_constant(3, 3, 1),
    16 => branch_less(3, 4, -5),
    --      a half times a half, as fractions
    17 => add_constant(10, 0, 16#4000#),
    18 => calculate(fn_multiply_fraction, 10, 10, 10),
    19 => add_constant(11, 0, 8),
    20 => calculate(fn_right, 10, 10, 11),
    21 => store(10, 6, 0),
    22 => halt,
    --      r8 := low octet of r7 squared
    23 => calculate(fn_multiply, 8, 7, 7),
    24 => add_constant(9, 0, 255),
    25 => calculate(fn_and, 8, 8, 9),
    26 => jump_register(15)
  );

end package program;
