-- The processor: five stages, one instruction each clock.

library ieee;
use ieee.std_logic_1164.all;

library blocks;
use blocks.bits.all;

use work.isa.all;
use work.stages.all;

entity core is
  port (
    clock       : in  std_logic;
    reset       : in  std_logic;
    address     : out code_address;
    code        : in  word;
    serial_put  : out std_logic;
    serial_data : out octet;
    halted      : out std_logic
  );
end entity core;

architecture rtl of core is

  signal stall      : std_logic;
  signal redirect   : redirection;
  signal fetch_out  : fetched;
  signal decode_out : to_execute;
  signal alu_out    : to_memory;
  signal write_back : to_write_back;

begin

  fetch : entity work.fetch_stage
    port map (clock    => clock,
              reset    => reset,
              stall    => stall,
              redirect => redirect,
              address  => address,
              data     => code,
              output   => fetch_out);

  decode : entity work.decode_stage
    port map (clock      => clock,
              reset      => reset,
              flush      => redirect.valid,
              input      => fetch_out,
              write_back => write_back,
              stall      => stall,
              output     => decode_out);

  execute : entity work.execute_stage
    port map (clock      => clock,
              reset      => reset,
              input      => decode_out,
              write_back => write_back,
              redirect   => redirect,
              halted     => halted,
              output     => alu_out);

  memory : entity work.memory_stage
    port map (clock       => clock,
              reset       => reset,
              input       => alu_out,
              serial_put  => serial_put,
              serial_data => serial_data,
              output      => write_back);

end architecture rtl;
