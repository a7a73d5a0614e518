-- Words that are written with the clock and read at once.

library ieee;
use ieee.std_logic_1164.all;
use ieee.numeric_std.all;

use work.bits.all;

entity ram is
  generic (
    size : positive := 256
  );
  port (
    clock      : in  std_logic;
    address    : in  std_logic_vector(address_width(size) - 1 downto 0);
    write      : in  std_logic;
    write_data : in  word;
    read_data  : out word
  );
end entity ram;

architecture rtl of ram is

  type word_array is array (0 to size - 1) of word;

  signal memory : word_array := (others => zero_word);

begin

  read_data <= memory(to_integer(unsigned(address)));

  writing : process (clock) is
  begin
    if rising_edge(clock) then
      if write = '1' then
        memory(to_integer(unsigned(address))) <= write_data;
      end if;
    end if;
  end process writing;

end architecture rtl;
