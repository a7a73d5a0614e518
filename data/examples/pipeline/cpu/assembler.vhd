-- Instructions written as function calls.

library ieee;
use ieee.std_logic_1164.all;
use ieee.numeric_std.all;

library blocks;
use blocks.bits.all;

use work.isa.all;

package assembler is

  subtype register_number is natural range 0 to register_count - 1;

  type word_array is array (natural range <>) of word;

  function halt return word;
  function calculate (fn : arithmetic; target, a, b : register_number) return word;
  function add_constant (target, a : register_number; number : integer) return word;
  function load (target, a : register_number; offset : integer) return word;
  function store (b, a : register_number; offset : integer) return word;
  function branch_equal (a, b : register_number; distance : integer) return word;
  function branch_less (a, b : register_number; distance : integer) return word;
  function jump (target : register_number; address : natural) return word;
  function jump_register (a : register_number) return word;

end package assembler;

package body assembler is

  function index (number : register_number) return register_index is
  begin
    return std_logic_vector(to_unsigned(number, register_index'length));
  end function index;

  function assembled (op           : operation;
                      target, a, b : register_number := 0;
                      number       : integer         := 0;
                      fn           : arithmetic      := fn_add) return word is
  begin
    return encoded((op => op, fn => fn, target => index(target), a => index(a), b => index(b),
                    constant_word => to_word(number)));
  end function assembled;

  function halt return word is
  begin
    return assembled(op_halt);
  end function halt;

  function calculate (fn : arithmetic; target, a, b : register_number) return word is
  begin
    return assembled(op_arithmetic, target => target, a => a, b => b, fn => fn);
  end function calculate;

  function add_constant (target, a : register_number; number : integer) return word is
  begin
    return assembled(op_constant, target => target, a => a, number => number);
  end function add_constant;

  function load (target, a : register_number; offset : integer) return word is
  begin
    return assembled(op_load, target => target, a => a, number => offset);
  end function load;

  function store (b, a : register_number; offset : integer) return word is
  begin
    return assembled(op_store, a => a, b => b, number => offset);
  end function store;

  function branch_equal (a, b : register_number; distance : integer) return word is
  begin
    return assembled(op_branch_equal, a => a, b => b, number => distance);
  end function branch_equal;

  function branch_less (a, b : register_number; distance : integer) return word is
  begin
    return assembled(op_branch_less, a => a, b => b, number => distance);
  end function branch_less;

  function jump (target : register_number; address : natural) return word is
  begin
    return assembled(op_jump, target => target, number => address);
  end function jump;

  function jump_register (a : register_number) return word is
  begin
    return assembled(op_jump_register, a => a);
  end function jump_register;

end package body assembler;
