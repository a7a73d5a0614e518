-- The processor with its code memory and its serial line.

library ieee;
use ieee.std_logic_1164.all;

library blocks;
use blocks.bits.all;

use work.isa.all;

entity system is
  generic (
    clocks_per_bit : positive := 4
  );
  port (
    clock    : in  std_logic;
    reset    : in  std_logic;
    line     : out std_logic;
    overflow : out std_logic;  -- an octet was lost, until the next reset
    halted   : out std_logic
  );
end entity system;

architecture structure of system is

  signal address : code_address;
  signal code    : word;
  signal put     : std_logic;
  signal data    : octet;
  signal full    : std_logic;
  signal empty   : std_logic;
  signal valid   : std_logic;
  signal taken   : std_logic;
  signal queued  : octet;
  signal lost    : std_logic := '0';

begin

  valid    <= not empty;
  overflow <= lost;

  code_store : entity work.code_memory
    port map (address => address, data => code);

  processor : entity work.core
    port map (clock       => clock,
              reset       => reset,
              address     => address,
              code        => code,
              serial_put  => put,
              serial_data => data,
              halted      => halted);

  queue : entity blocks.fifo
    generic map (depth => 16)
    port map (clock     => clock,
              reset     => reset,
              put       => put,
              put_data  => data,
              full      => full,
              take      => taken,
              take_data => queued,
              empty     => empty);

  sender : entity blocks.serial_sender
    generic map (clocks_per_bit => clocks_per_bit)
    port map (clock => clock,
              reset => reset,
              data  => queued,
              valid => valid,
              taken => taken,
              line  => line);

  watching : process (clock) is
  begin
    if rising_edge(clock) then
      if reset = '1' then
        lost <= '0';
      elsif put = '1' and full = '1' then
        lost <= '1';
      end if;
    end if;
  end process watching;

end architecture structure;
