-- Counts up past the end and back down again, and compares each step.

library ieee;
use ieee.std_logic_1164.all;
use ieee.numeric_std.all;

use work.counter_pkg.all;

entity counter_tb is
end entity counter_tb;

architecture test of counter_tb is

  constant highest : positive := 9;
  constant period  : time     := 10 ns;

  signal clock  : std_logic := '0';
  signal reset  : std_logic := '1';
  signal enable : std_logic := '0';
  signal way    : direction := up;
  signal value  : unsigned(width_of(highest) - 1 downto 0);
  signal at_end : std_logic;
  signal done   : boolean := false;

  component counter is
    generic (
      highest : positive
    );
    port (
      clock  : in  std_logic;
      reset  : in  std_logic;
      enable : in  std_logic;
      way    : in  direction;
      value  : out unsigned(width_of(highest) - 1 downto 0);
      at_end : out std_logic
    );
  end component counter;

begin

  clock <= not clock after period / 2 when not done else '0';

  dut : counter
    generic map (highest => highest)
    port map (clock  => clock,
              reset  => reset,
              enable => enable,
              way    => way,
              value  => value,
              at_end => at_end);

  stimulus : process is

    procedure expect (number : natural) is
    begin
      wait until falling_edge(clock);
      assert value = number
        report "counted " & integer'image(to_integer(value)) &
               " instead of " & integer'image(number)
        severity error;
    end procedure expect;

  begin
    expect(0);
    reset  <= '0';
    enable <= '1';
    for number in 1 to highest loop
      expect(number);
    end loop;
    assert at_end = '1' report "the end was not noticed" severity error;
    expect(0);

    way <= down;
    for number in highest downto 5 loop
      expect(number);
    end loop;

    enable <= '0';
    expect(5);

    report "counter_tb is done" severity note;
    done <= true;
    wait;
  end process stimulus;

end architecture test;
