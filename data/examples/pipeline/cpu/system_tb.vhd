-- Runs the program and compares what comes over the serial line.

library ieee;
use ieee.std_logic_1164.all;
use ieee.numeric_std.all;

library blocks;
use blocks.bits.all;

use work.program.all;

entity system_tb is
end entity system_tb;

architecture test of system_tb is

  constant clocks_per_bit : positive := 4;
  constant period         : time     := 10 ns;
  constant longest        : positive := 5000;  -- clocks

  signal clock    : std_logic := '0';
  signal reset    : std_logic := '1';
  signal line     : std_logic;
  signal overflow : std_logic;
  signal halted   : std_logic;
  signal data     : octet;
  signal received : std_logic;
  signal damaged  : std_logic;
  signal done     : boolean := false;

begin

  clock <= not clock after period / 2 when not done else '0';
  reset <= '0' after 3 * period;

  dut : entity work.system
    generic map (clocks_per_bit => clocks_per_bit)
    port map (clock    => clock,
              reset    => reset,
              line     => line,
              overflow => overflow,
              halted   => halted);

  receiver : entity blocks.serial_receiver
    generic map (clocks_per_bit => clocks_per_bit)
    port map (clock    => clock,
              reset    => reset,
              line     => line,
              data     => data,
              received => received,
              damaged  => damaged);

  checking : process is

    variable clocks : natural := 0;

    procedure expect (number : natural) is
    begin
      loop
        wait until rising_edge(clock);
        clocks := clocks + 1;
        exit when received = '1' or clocks > longest;
      end loop;
      assert clocks <= longest report "the machine is silent" severity failure;
      assert damaged = '0' report "an octet was damaged" severity error;
      assert unsigned(data) = number
        report "received " & integer'image(to_integer(unsigned(data))) & " instead of " &
               integer'image(number)
        severity error;
    end procedure expect;

    variable this_one : natural  := 0;
    variable next_one : positive := 1;
    variable sum      : positive;

  begin
    for number in 1 to number_count loop
      expect((this_one ** 2) mod 256);
      sum      := this_one + next_one;
      this_one := next_one;
      next_one := sum;
    end loop;
    expect(16#20#);

    assert halted = '1' report "the machine still runs" severity error;
    assert overflow = '0' report "the queue was too short" severity error;
    report "system_tb is done after " & integer'image(clocks) & " clocks" severity note;
    done <= true;
    wait;
  end process checking;

end architecture test;
