#include "tests/support/run_program.h"
#include "tests/support/scratch.h"

namespace pellux {
namespace {

/// A small design in two libraries: "types" is used by "leaf", "leaf" by "middle" and "middle" by
/// "top"; "alone" uses nothing, and "other" is no part of it yet. The analysis of "alone" warns, as
/// does the elaboration, of "leaf".
const std::pair<const char*, const char*> k_design[] = {
    {"types.vhd", "package types is function width return integer; end;\n"},
    {"types_body.vhd", "package body types is\n"
                       "function width return integer is begin return 3; end; end;\n"},
    {"alone.vhd", "entity alone is end;\narchitecture rtl of alone is\n"
                  "constant \\c n\\ : natural range 0 to 3 := 4; begin end;\n"},
    {"other.vhd", "entity alone is end;\narchitecture rtl of alone is begin end;\n"},
    {"leaf.vhd", "library alib; use alib.types.all;\n"
                 "entity leaf is generic (n : integer := width); end;\n"
                 "architecture rtl of leaf is component \\c n\\ is end component;\n"
                 "begin u : \\c n\\; end;\n"},
    {"middle.vhd", "entity middle is end;\narchitecture rtl of middle is begin\n"
                   "u : entity work.leaf; end;\n"},
    {"top.vhd", "entity top is end;\narchitecture rtl of top is begin\n"
                "u : entity work.middle; end;\n"},
    {"bench.vhd", "library alib; use alib.types.all; entity bench is end;\n"
                  "architecture a of bench is begin u : entity work.leaf; end;\n"},
    {"bin/ghdl-mcode", "#!/bin/sh\nexec ghdl \"$@\"\n"}}; // may not be run yet

const std::string k_types = "-m -aalib types.vhd -aalib types_body.vhd ";
const std::string k_all = k_types + "alone.vhd leaf.vhd middle.vhd -b top.vhd";
const std::string k_moved = k_types + "sub/alone.vhd leaf.vhd middle.vhd -b top.vhd";
const std::string k_full_bench = "-aalib types.vhd -aalib types_body.vhd -b bench.vhd";
const std::string k_bench = k_types + "-b bench.vhd";
const std::string k_without = k_types + "leaf.vhd middle.vhd -b top.vhd";

const std::string k_shorten = R"(/^    /d; s/Compiling '\(.*\)'/\1/; s/ (line \([0-9]*\),.*/:\1/)";

/// In turn: a shell changes something, and the words are compiled.
struct Step {
    const char* change;
    std::string words;
    const char* told; ///< files that are compiled, and messages as FILE:LINE
};

const Step k_steps[] = {
    {"", k_all,
     "types.vhd types_body.vhd alone.vhd alone.vhd:3 leaf.vhd middle.vhd top.vhd leaf.vhd:4 "},
    {"", k_all, "alone.vhd:3 leaf.vhd:4 All files are up to date. "},
    {"mkdir sub; mv alone.* sub", k_moved, "sub/alone.vhd:3 leaf.vhd:4 All files are up to date. "},
    {"sed -i '1i-- why' leaf.vhd", k_moved, "sub/alone.vhd:3 leaf.vhd leaf.vhd:5 "},
    {"echo -- why >>types.vhd", k_moved, "types.vhd sub/alone.vhd:3 leaf.vhd:5 "},
    // Two projects in one directory, with a package that both have; in the libraries' opinion it is
    // the year 3020.
    {"", k_bench, "bench.vhd leaf.vhd:5 "},
    {"echo -- why >>types.vhd", k_moved, "types.vhd sub/alone.vhd:3 leaf.vhd:5 "},
    {"", k_bench, "leaf.vhd:5 "}, // for its place
    {"", k_full_bench, "types.vhd types_body.vhd bench.vhd leaf.vhd:5 "},
    {"sed -i 's/\"20/\"30/' */*.cf; echo >>types.vhd; echo >>leaf.vhd", k_moved,
     "types.vhd sub/alone.vhd:3 leaf.vhd leaf.vhd:5 "},
    {"", k_bench, "bench.vhd leaf.vhd:5 "},
    {"", k_bench, "leaf.vhd:5 All files are up to date. "},
    {"sed -i s/3/4/ types_body.vhd", k_moved, "types_body.vhd sub/alone.vhd:3 leaf.vhd:5 "},
    {"sed -i \"s/end/constant c : bit := '0'; end/\" types.vhd", k_moved,
     "types.vhd types_body.vhd sub/alone.vhd:3 leaf.vhd middle.vhd leaf.vhd:5 "},
    {"sed -i 's/begin u/signal s : bit; begin u/' leaf.vhd", k_moved,
     "sub/alone.vhd:3 leaf.vhd leaf.vhd:5 "},
    {"sed -i \"1s/end/generic (g : bit := '0'); end/\" middle.vhd", k_moved,
     "sub/alone.vhd:3 middle.vhd top.vhd leaf.vhd:5 "},
    {"", "-w1 " + k_moved,
     "sub/alone.vhd:3 leaf.vhd:5 leaf.vhd:  Abort:  (E48) Warning limit (1) exceeded "},
    {"rm sub/alone.vhd", k_without, "leaf.vhd:5 All files are up to date. "},
    {"", "other.vhd " + k_without, "other.vhd leaf.vhd:5 "},
    {"grep -q other work/*.cf", "-aalib other.vhd " + k_without, "other.vhd leaf.vhd:5 "},
    {"! grep -q other work/*.cf", "other.vhd " + k_without, "other.vhd leaf.vhd:5 "},
    // An order counts where the sources meet.
    {"", k_without + " other.vhd", "leaf.vhd:5 All files are up to date. "},
    {"", k_types + "middle.vhd leaf.vhd -b top.vhd", "middle.vhd middle.vhd:3 top.vhd top.vhd:3 "},
    {"", k_without, "middle.vhd top.vhd leaf.vhd:5 "},
    {"", "-yu " + k_without, "types.vhd types_body.vhd leaf.vhd middle.vhd top.vhd leaf.vhd:5 "},
    {"", "-v93 " + k_without, "types.vhd types_body.vhd leaf.vhd middle.vhd top.vhd leaf.vhd:5 "},
    // A record of the form before has no warnings; what another standard left is still there.
    {"sed -i 's/bde 2/bde 1/' t*.bde", k_without, "leaf.vhd:5 All files are up to date. "},
    {"chmod +x bin/*", "-m types.vhd", "types.vhd "},
    {"", "-m types.vhd", "All files are up to date. "},
};

TEST(Recompile, CompilesWhatAChangeHasAnEffectOnAndWarnsOfAll) {
    const Scratch scratch;
    const std::string bin_first = scratch.path("bin") + ":" + environment_variable("PATH");
    const test::ScopedVariable path{"PATH", bin_first.c_str()};
    for (const auto& [name, text] : k_design)
        scratch.write(name, text);
    for (const Step& step : k_steps) {
        ASSERT_EQ(std::system(step.change), 0) << step.change;
        const std::string run = k_brix + " -q " + step.words + " | sed \"" + k_shorten + "\"";
        ASSERT_EQ(std::system((run + " | tr '\\n' ' ' >told").c_str()), 0);
        EXPECT_EQ(scratch.read("told"), step.told) << step.change << " " << step.words;
    }
}

} // namespace
} // namespace pellux
