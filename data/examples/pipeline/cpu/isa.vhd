-- The instructions and how they lie in a word.
--
--   31..28  operation      27..24  target register
--   23..20  register a     19..16  register b     15..0  constant

library ieee;
use ieee.std_logic_1164.all;
use ieee.numeric_std.all;

library blocks;
use blocks.bits.all;

package isa is

  constant register_count : positive := 16;

  subtype register_index is std_logic_vector(3 downto 0);
  subtype code_address is unsigned(9 downto 0);

  type operation is (
    op_halt,
    op_arithmetic,   -- target := a <function> b
    op_constant,     -- target := a + constant
    op_load,         -- target := memory(a + constant)
    op_store,        -- memory(a + constant) := b
    op_branch_equal, -- if a = b: go to the next address + constant
    op_branch_less,  -- if a < b
    op_jump,         -- go to constant, target := address of the next instruction
    op_jump_register -- go to a
  );

  type arithmetic is (
    fn_add, fn_subtract, fn_and, fn_or, fn_xor, fn_left, fn_right, fn_right_signed,
    fn_less, fn_less_unsigned, fn_multiply, fn_multiply_fraction
  );

  type instruction is record
    op            : operation;
    fn            : arithmetic;
    target        : register_index;
    a             : register_index;
    b             : register_index;
    constant_word : word;
  end record instruction;

  constant no_operation : instruction := (
    op => op_constant, fn => fn_add, target => (others => '0'), a => (others => '0'),
    b => (others => '0'), constant_word => zero_word);

  function decoded (code : word) return instruction;
  function encoded (code : instruction) return word;

  function writes_register (code : instruction) return boolean;
  function reads_a (code : instruction) return boolean;
  function reads_b (code : instruction) return boolean;

end package isa;

package body isa is

  function decoded (code : word) return instruction is
    constant op_number : natural := to_integer(unsigned(code(31 downto 28)));
    constant fn_number : natural := to_integer(unsigned(code(3 downto 0)));
    variable result    : instruction;
  begin
    -- What is no instruction stops the machine.
    result.op := op_halt;
    if op_number <= operation'pos(operation'high) then
      result.op := operation'val(op_number);
    end if;
    result.fn := fn_add;
    if result.op = op_arithmetic and fn_number <= arithmetic'pos(arithmetic'high) then
      result.fn := arithmetic'val(fn_number);
    end if;
    result.target        := code(27 downto 24);
    result.a             := code(23 downto 20);
    result.b             := code(19 downto 16);
    result.constant_word := sign_extend(code(15 downto 0));
    return result;
  end function decoded;

  function encoded (code : instruction) return word is
    variable low : std_logic_vector(15 downto 0) := code.constant_word(15 downto 0);
  begin
    if code.op = op_arithmetic then
      low := std_logic_vector(to_unsigned(arithmetic'pos(code.fn), 16));
    end if;
    return std_logic_vector(to_unsigned(operation'pos(code.op), 4)) &
      code.target & code.a & code.b & low;
  end function encoded;

  function writes_register (code : instruction) return boolean is
  begin
    case code.op is
      when op_arithmetic | op_constant | op_load | op_jump =>
        return is_zero(code.target) = '0';
      when op_halt | op_store | op_branch_equal | op_branch_less | op_jump_register =>
        return false;
    end case;
  end function writes_register;

  function reads_a (code : instruction) return boolean is
  begin
    return code.op /= op_halt and code.op /= op_jump;
  end function reads_a;

  function reads_b (code : instruction) return boolean is
  begin
    case code.op is
      when op_arithmetic | op_store | op_branch_equal | op_branch_less =>
        return true;
      when op_halt | op_constant | op_load | op_jump | op_jump_register =>
        return false;
    end case;
  end function reads_b;

end package body isa;
