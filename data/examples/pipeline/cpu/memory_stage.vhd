-- Loads and stores; stores behind the memory go to the serial line.

library ieee;
use ieee.std_logic_1164.all;
use ieee.numeric_std.all;

library blocks;
use blocks.bits.all;

use work.isa.all;
use work.stages.all;
use work.program.all;

entity memory_stage is
  generic (
    size : positive := 256
  );
  port (
    clock       : in  std_logic;
    reset       : in  std_logic;
    input       : in  to_memory;
    serial_put  : out std_logic;
    serial_data : out octet;
    output      : out to_write_back
  );
end entity memory_stage;

architecture rtl of memory_stage is

  signal held      : to_write_back := nothing_to_write;
  signal is_store  : std_logic;
  signal is_serial : std_logic;
  signal write     : std_logic;
  signal read_data : word;

begin

  output <= held;

  is_store  <= '1' when input.valid = '1' and input.code.op = op_store else '0';
  is_serial <= '1' when unsigned(input.result) = serial_address else '0';
  write     <= is_store and not is_serial;

  serial_put  <= is_store and is_serial;
  serial_data <= input.data(octet'range);

  data_memory : entity blocks.ram
    generic map (size => size)
    port map (clock      => clock,
              address    => input.result(address_width(size) - 1 downto 0),
              write      => write,
              write_data => input.data,
              read_data  => read_data);

  handing_on : process (clock) is
  begin
    if rising_edge(clock) then
      held <= nothing_to_write;
      if reset = '0' and input.valid = '1' and writes_register(input.code) then
        held <= (write => '1', target => input.code.target, data => input.result);
        if input.code.op = op_load then
          held.data <= read_data;
        end if;
      end if;
    end if;
  end process handing_on;

end architecture rtl;
