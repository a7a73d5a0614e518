-- Queue of octets between a producer and a slower consumer of the same clock.

library ieee;
use ieee.std_logic_1164.all;
use ieee.numeric_std.all;

use work.bits.all;

entity fifo is
  generic (
    depth : positive := 16  -- a power of two
  );
  port (
    clock     : in  std_logic;
    reset     : in  std_logic;
    put       : in  std_logic;
    put_data  : in  octet;
    full      : out std_logic;
    take      : in  std_logic;
    take_data : out octet;
    empty     : out std_logic
  );
end entity fifo;

architecture rtl of fifo is

  constant width : positive := address_width(depth);

  type octet_array is array (0 to depth - 1) of octet;

  signal memory : octet_array := (others => (others => '0'));

  -- One bit more than an address: equal addresses are a full or an empty queue.
  signal head : unsigned(width downto 0) := (others => '0');
  signal tail : unsigned(width downto 0) := (others => '0');

  signal is_full  : std_logic;
  signal is_empty : std_logic;

begin

  is_empty <= '1' when head = tail else '0';
  is_full  <= '1' when tail - head = depth else '0';

  full      <= is_full;
  empty     <= is_empty;
  take_data <= memory(to_integer(head(width - 1 downto 0)));

  moving : process (clock) is
  begin
    if rising_edge(clock) then
      if reset = '1' then
        head <= (others => '0');
        tail <= (others => '0');
      else
        if put = '1' and is_full = '0' then
          memory(to_integer(tail(width - 1 downto 0))) <= put_data;
          tail <= tail + 1;
        end if;
        if take = '1' and is_empty = '0' then
          head <= head + 1;
        end if;
      end if;
    end if;
  end process moving;

end architecture rtl;
