-- What the stages of the pipeline hand on to each other.

library ieee;
use ieee.std_logic_1164.all;
use ieee.numeric_std.all;

library blocks;
use blocks.bits.all;

use work.isa.all;

package stages is

  type fetched is record
    valid  : std_logic;
    behind : code_address;  -- address of the next instruction
    code   : word;
  end record fetched;

  type to_execute is record
    valid  : std_logic;
    behind : code_address;
    code   : instruction;
    data_a : word;
    data_b : word;
  end record to_execute;

  type to_memory is record
    valid  : std_logic;
    code   : instruction;
    result : word;  -- of the calculation, or the address
    data   : word;  -- to be stored
  end record to_memory;

  type to_write_back is record
    write  : std_logic;
    target : register_index;
    data   : word;
  end record to_write_back;

  type redirection is record
    valid   : std_logic;
    address : code_address;
  end record redirection;

  constant nothing_fetched : fetched :=
    (valid => '0', behind => (others => '0'), code => zero_word);

  constant nothing_to_execute : to_execute :=
    (valid => '0', behind => (others => '0'), code => no_operation, data_a => zero_word,
     data_b => zero_word);

  constant nothing_to_memory : to_memory :=
    (valid => '0', code => no_operation, result => zero_word, data => zero_word);

  constant nothing_to_write : to_write_back :=
    (write => '0', target => (others => '0'), data => zero_word);

end package stages;
