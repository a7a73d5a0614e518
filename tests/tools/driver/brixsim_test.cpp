#include "tests/tools/driver/environment.h"

namespace pellux {
namespace {

const std::string k_waveform = "$enddefinitions $end\n#0\n0!\n#5\n1!\n";

/// `line` is cut at its blanks.
ToolRun run_brixsim(const std::string& line) {
    return run_program("brixsim", test::words_of("-q " + line));
}

struct FakeSimulations : testing::Test, FakeGhdl {
    void SetUp() override {
        const std::string units = "run_good.vhd run_hang.vhd run_cut.vhd run_crash.vhd "
                                  "run_empty.vhd run_fault.vhd run_silent.vhd run_twice.vhd";
        write_units(units);
        ASSERT_EQ(run_brix(test::words_of("-q " + units)).status, 0);
    }
};

TEST_F(FakeSimulations, TheWaveformComesOnlyFromASimulationThatLeftOne) {
    const std::string not_whole =
        "BRIXSIM:  Waveform 'w' can't be written: GHDL left no whole file; the disk may be full.\n";
    const std::string whole = k_waveform + "#10\n";
    // Unit, word, status, text between the first line and the waveform's, and the waveform.
    const std::tuple<std::string, const char*, int, std::string, std::string> rows[] = {
        {"run_good", "-q", 0, "", whole},
        {"run_hang", "-l1", 1,
         "x.vhd (line 1, col 1):  Note: at 0ms: runs\n"
         "BRIXSIM:  Simulation of 'run_hang' ended by the limit of 1 seconds.\n",
         k_waveform},
        {"run_hang", "-wghw -l0.1", 1,
         "x.vhd (line 1, col 1):  Note: at 0ms: runs\n"
         "BRIXSIM:  Simulation of 'run_hang' ended by the limit of 0.1 seconds.\n"
         "No waveform of 'run_hang' was left; 'w' is not written.\n",
         "old"},
        {"run_cut", "-q", 4, not_whole, "old"},
        {"run_good", "-wghw", 4, not_whole, "old"},
        {"run_crash", "-q", 1, "run_crash.vhd:  GHDL itself failed on this file (signal 9).\n",
         whole},
        {"run_fault", "-q", 1, "run_fault.vhd:  GHDL itself failed on this file (exit status 2).\n",
         whole},
        {"run_silent", "-q", 1, "run_silent.vhd:  GHDL refused this file without a message.\n",
         whole},
    };
    scratch.write("w", "old");
    remember();
    for (const auto& [unit, word, status, text, waveform] : rows) {
        const std::string file = unit + ".vhd";
        scratch.write("w", "old");
        const ToolRun run = run_brixsim(word + (" -ow " + file));
        EXPECT_EQ(run.status, status) << run.text;
        EXPECT_EQ(scratch.read("w"), waveform) << file;
        const bool kept = waveform != "old";
        EXPECT_EQ(run.text, "Simulating '" + unit + "'\n" + text +
                                (kept ? "Waveform of '" + unit + "' in 'w'.\n" : ""));
        expect_nothing_left();
    }
}

TEST_F(FakeSimulations, ADesignIsAProjectOrItsTop) {
    scratch.write("damaged.bpr", "what is this");
    scratch.write("there/x", "");
    write_project("good.bpr", {"run_cut.vhd", "run_good.vhd"}, "run_good.vhd", "", -1);
    write_project("bench.bpr", {"run_cut.vhd"}, "run_cut.vhd", "RUN_Good", -1);
    write_project("cut.bpr", {"run_cut.vhd"}, "run_cut.vhd", "", -1);
    write_project("twice.bpr", {"run_twice.vhd"}, "run_twice.vhd", "run_good", -1);
    write_project("lib.bpr", {"run_hang.vhd"}, "run_hang.vhd", "", -1, "Alib");
    const std::string holds = "BRIXSIM:  Library 'alib' holds no";
    const std::pair<const char*, std::string> rows[] = {
        {"good.bpr", "Simulating 'run_good'"},
        {"bench.bpr", "Simulating 'run_good'"},
        {"-urun_twice bench.bpr", "Simulating 'run_twice'"},
        {"lib.bpr", holds + "thing of 'run_hang.vhd'; compile it first."},
        {"-urun_hang lib.bpr", holds + " entity or configuration 'run_hang'."},
        // A source stands for itself unless one project has it as its top.
        {"run_fault.vhd", "Simulating 'run_fault'"},
        {"./run_twice.vhd", "Simulating 'run_good'"},
        {"run_cut.vhd", "Simulating 'run_cut'"},
    };
    const auto expect = [](const std::string& line, const std::string& told) {
        EXPECT_TRUE(run_brixsim(line).text.starts_with(told + "\n")) << line;
    };
    for (const auto& [line, told] : rows)
        expect(line, told);
    EXPECT_TRUE(std::filesystem::exists("good.vcd"));
    // A project elsewhere is simulated there; the waveform stays here.
    std::filesystem::current_path(scratch.path("there"));
    expect("-ow.vcd ../good.bpr", "Simulating 'run_good'");
    EXPECT_TRUE(std::filesystem::exists("w.vcd"));
}

/// With the installed GHDL, whose words these tests hold our reading of it against.
struct RealSimulations : testing::Test {
    Scratch scratch;
    test::ScopedVariable cache{"XDG_CACHE_HOME", scratch.path("cache").c_str()};
};

TEST_F(RealSimulations, ReportsHaveTheirPlacesAndMovedLibrariesStayAsTheyAre) {
    scratch.write("p/src/check.vhd", R"(package check is procedure fits(n : natural); end;
package body check is
  procedure fits(n : natural) is variable v : natural range 0 to 3; begin

    v := n;
  end; end;
)");
    scratch.write("p/src/tb.vhd", R"(library lib; use lib.check.all; use std.textio.all;
#$ DEVICE x
entity tb is end;
architecture a of tb is signal s : bit; component none is port(x : in bit); end component;
begin
)"
                                  "\tu : none port map(s);\n"
                                  R"(  process variable l : line; begin
    report "one" & LF & "two";
    write(l, string'("a:1:2: text")); writeline(output, l);
    s <= '1' after 3 ns; wait for 5 ns;
    for i in 1 to 2 loop assert s = '0' report "is one" severity warning; end loop;
)"
                                  "\t\tassert false severity error;\n    fits(4);\n"
                                  "  end process;\nend;\n");
    std::filesystem::current_path(scratch.path("p"));
    write_project("p.bpr", {"src/check.vhd", "src/tb.vhd"}, "src/tb.vhd", "", 8, "Bench");
    const ToolRun compiled =
        run_brix({"-q", "-alib", "src/check.vhd", "-aBench", "-b", "src/tb.vhd"});
    ASSERT_EQ(compiled.status, 0) << compiled.text;
    std::filesystem::current_path(scratch.path());
    std::filesystem::rename("p", "moved");
    std::filesystem::current_path(scratch.path("moved"));
    const auto libraries = [&] {
        return std::pair(scratch.files("moved/lib"), scratch.files("moved/bench"));
    };
    const auto before = libraries();
    const ToolRun run = run_brixsim("p.bpr");
    EXPECT_EQ(run.text, R"(Simulating 'tb'
src/tb.vhd (line 6, col 2):  Warning: instance "u" of component "none" is not bound [-Wbinding]
    (in default configuration of tb(a)) (line 4, col 14)
src/tb.vhd (line 8, col 5):  Note: at 0ms: one
two
a:1:2: text
src/tb.vhd (line 11, col 26):  Warning: at 5ns: is one
src/tb.vhd (line 11, col 26):  Warning: at 5ns: is one
src/tb.vhd (line 12, col 3):  at 5ns: Assertion violation
src/check.vhd (line 5, col 1):  bound check failure
    in process .tb(a).P0
    from: lib.check.fits at check.vhd:5
    from: process bench.tb(a).P0 at tb.vhd:13
Waveform of 'tb' in 'p.vcd'.
)");
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(scratch.read("moved/p.vcd").find("\n#3000000\n1"), std::string::npos);
    EXPECT_EQ(libraries(), before);
    EXPECT_TRUE(scratch.names("cache/pellux/simulations").empty());
    // From elsewhere; a change since the compilation is told and nothing simulated.
    std::filesystem::current_path(scratch.path());
    EXPECT_EQ(run_brixsim("-s4ns -wghw moved/p.bpr").status, 0);
    EXPECT_TRUE(scratch.read("moved/p.ghw").starts_with("GHDLwave"));
    scratch.write("moved/src/check.vhd", "package check is end;\n");
    const ToolRun stale = run_brixsim("moved/p.bpr");
    EXPECT_EQ(stale.status, 1);
    EXPECT_TRUE(stale.text.ends_with("has changed and must be reanalysed\n")) << stale.text;
}

TEST_F(RealSimulations, EachEndHasItsStatus) {
    // A body, the status, and what is told behind the first line, up to the waveform's.
    const std::tuple<const char*, int, const char*> rows[] = {
        {"begin report \"bang\" severity failure; wait", 1,
         "e.vhd (line 3, col 7):  failure at 0ms: bang\n    in process .e(a).P0\n"
         "    from: process work.e(a).P0 at e.vhd:3\n"},
        {"begin std.env.stop(3); wait", 1, "BRIXSIM:  simulation stopped @0ms with status 3\n"},
        {"begin std.env.finish; wait", 0, "simulation finished @0ms\n"},
        // What only the project's options allow, and more than GHDL's own limit of a variable.
        {"function f(n : integer) return bit is variable v : bit_vector(1 to n);\n"
         "begin return '0'; end; begin assert f(2 ** 20) = '0'; wait",
         0, ""},
    };
    write_project("e.bpr", {"e.vhd"}, "e.vhd", "", 8, "", k_new_project_flags | 1 << 24 | 1 << 18);
    for (const auto& [body, status, told] : rows) {
        scratch.write("e.vhd", "library ieee; use ieee.std_logic_1164.all, "
                               "ieee.std_logic_unsigned.all; entity e is end;\n"
                               "architecture a of e is shared variable s : bit; begin process\n" +
                                   std::string(body) + "; end process; end;\n");
        ASSERT_EQ(run_brix({"-q", "-yu", "-yv2", "-b", "e.vhd"}).status, 0);
        const ToolRun run = run_brixsim("e.vhd");
        EXPECT_EQ(run.text,
                  "Simulating 'e'\n" + std::string(told) + "Waveform of 'e' in 'e.vcd'.\n");
        EXPECT_EQ(run.status, status) << body;
    }
}

} // namespace
} // namespace pellux
