-- Gives an operand its newest value, which may not have reached the registers yet.

library ieee;
use ieee.std_logic_1164.all;

library blocks;
use blocks.bits.all;

use work.isa.all;
use work.stages.all;

entity forwarding_unit is
  port (
    index      : in  register_index;
    read_data  : in  word;
    in_memory  : in  to_memory;
    write_back : in  to_write_back;
    data       : out word
  );
end entity forwarding_unit;

architecture rtl of forwarding_unit is
begin

  choose : process (all) is
  begin
    data <= read_data;
    if in_memory.valid = '1' and writes_register(in_memory.code)
       and in_memory.code.target = index then
      data <= in_memory.result;
    elsif write_back.write = '1' and write_back.target = index then
      data <= write_back.data;
    end if;
  end process choose;

end architecture rtl;
