-- Registers with two ports to read and one to write; register 0 is always zero.
--
-- What is being written is seen by both readers in the same clock.

library ieee;
use ieee.std_logic_1164.all;
use ieee.numeric_std.all;

use work.bits.all;

entity register_bank is
  generic (
    count : positive := 16
  );
  port (
    clock       : in  std_logic;
    read_a      : in  std_logic_vector(address_width(count) - 1 downto 0);
    read_b      : in  std_logic_vector(address_width(count) - 1 downto 0);
    data_a      : out word;
    data_b      : out word;
    write       : in  std_logic;
    write_index : in  std_logic_vector(address_width(count) - 1 downto 0);
    write_data  : in  word
  );
end entity register_bank;

architecture rtl of register_bank is

  type word_array is array (0 to count - 1) of word;

  signal registers : word_array := (others => zero_word);

  function read_register (bank    : word_array;
                          index   : std_logic_vector;
                          pending : std_logic;
                          place   : std_logic_vector;
                          data    : word) return word is
  begin
    if is_zero(index) = '1' then
      return zero_word;
    end if;
    if pending = '1' and index = place then
      return data;
    end if;
    return bank(to_integer(unsigned(index)));
  end function read_register;

begin

  data_a <= read_register(registers, read_a, write, write_index, write_data);
  data_b <= read_register(registers, read_b, write, write_index, write_data);

  writing : process (clock) is
  begin
    if rising_edge(clock) then
      if write = '1' then
        registers(to_integer(unsigned(write_index))) <= write_data;
      end if;
    end if;
  end process writing;

end architecture rtl;
