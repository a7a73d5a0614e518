-- Calculates, and decides where branches go.

library ieee;
use ieee.std_logic_1164.all;
use ieee.numeric_std.all;

library blocks;
use blocks.bits.all;

use work.isa.all;
use work.stages.all;

entity execute_stage is
  port (
    clock      : in  std_logic;
    reset      : in  std_logic;
    input      : in  to_execute;
    write_back : in  to_write_back;
    redirect   : out redirection;
    halted     : out std_logic;
    output     : out to_memory
  );
end entity execute_stage;

architecture rtl of execute_stage is

  signal held    : to_memory := nothing_to_memory;
  signal data_a  : word;
  signal data_b  : word;
  signal right   : word;
  signal result  : word;
  signal equal   : std_logic;
  signal less    : std_logic;
  signal stopped : std_logic := '0';

begin

  output <= held;
  halted <= stopped;

  forward_a : entity work.forwarding_unit
    port map (index      => input.code.a,
              read_data  => input.data_a,
              in_memory  => held,
              write_back => write_back,
              data       => data_a);

  forward_b : entity work.forwarding_unit
    port map (index      => input.code.b,
              read_data  => input.data_b,
              in_memory  => held,
              write_back => write_back,
              data       => data_b);

  right <= data_b when reads_b(input.code) and input.code.op /= op_store
           else input.code.constant_word;

  calculation : entity work.alu
    port map (fn     => input.code.fn,
              left   => data_a,
              right  => right,
              result => result,
              equal  => equal,
              less   => less);

  branching : process (all) is
    variable distance : signed(code_address'range);
  begin
    distance := resize(signed(input.code.constant_word), code_address'length);
    redirect <= (valid => '0', address => unsigned(signed(input.behind) + distance));
    if input.valid = '1' then
      case input.code.op is
        when op_branch_equal =>
          redirect.valid <= equal;
        when op_branch_less =>
          redirect.valid <= less;
        when op_jump =>
          redirect <= (valid => '1', address => unsigned(distance));
        when op_jump_register =>
          redirect <= (valid => '1', address => unsigned(data_a(code_address'range)));
        when op_halt =>
          -- The halt is fetched for ever, and nothing behind it.
          redirect <= (valid => '1', address => input.behind - 1);
        when op_arithmetic | op_constant | op_load | op_store =>
          null;
      end case;
    end if;
  end process branching;

  handing_on : process (clock) is
  begin
    if rising_edge(clock) then
      if reset = '1' then
        held    <= nothing_to_memory;
        stopped <= '0';
      else
        held <= (valid => input.valid, code => input.code, result => result, data => data_b);
        if input.code.op = op_jump then
          held.result <= std_logic_vector(resize(input.behind, word_width));
        end if;
        if input.valid = '1' and input.code.op = op_halt then
          stopped <= '1';
        end if;
      end if;
    end if;
  end process handing_on;

end architecture rtl;
