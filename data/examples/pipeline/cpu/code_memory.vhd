-- Read-only memory with the program; behind its end the machine halts.

library ieee;
use ieee.std_logic_1164.all;
use ieee.numeric_std.all;

library blocks;
use blocks.bits.all;

use work.isa.all;
use work.assembler.all;
use work.program.all;

entity code_memory is
  port (
    address : in  code_address;
    data    : out word
  );
end entity code_memory;

architecture rtl of code_memory is
begin

  data <= code(to_integer(address)) when address <= code'high else halt;

end architecture rtl;
