-- Holds an instruction back while what it needs is still being loaded.

library ieee;
use ieee.std_logic_1164.all;

use work.isa.all;
use work.stages.all;

entity hazard_unit is
  port (
    waiting : in  instruction;  -- is being decoded
    ahead   : in  to_execute;
    stall   : out std_logic
  );
end entity hazard_unit;

architecture rtl of hazard_unit is

  function needs (code : instruction; target : register_index) return boolean is
  begin
    return (reads_a(code) and code.a = target) or (reads_b(code) and code.b = target);
  end function needs;

begin

  stall <= '1' when ahead.valid = '1' and ahead.code.op = op_load
                    and writes_register(ahead.code) and needs(waiting, ahead.code.target)
           else '0';

end architecture rtl;
