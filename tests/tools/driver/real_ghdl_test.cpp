#include "core/os/process.h"
#include "tests/tools/driver/run_brix.h"
#include "tests/tools/driver/scratch.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

namespace pellux {
namespace {

/// Runs with the installed GHDL, whose words these tests hold our reading of it against.
struct RealGhdl : testing::Test {
    Scratch scratch;

    void SetUp() override {
        PathBuffer path;
        ASSERT_TRUE(find_program("ghdl-mcode", path) || find_program("ghdl", path))
            << "GHDL is not installed";
    }
    void copy_example(const char* name) const {
        std::filesystem::copy(std::string(PELLUX_SOURCE_DIR) + "/data/examples/" + name,
                              scratch.directory, std::filesystem::copy_options::recursive);
    }
};

TEST_F(RealGhdl, CounterExampleCompiles) {
    copy_example("counter");
    const BrixRun run =
        run_brix({"-q", "-a", "counter_pkg.vhd", "-a", "counter.vhd", "-b", "counter_tb.vhd"});
    EXPECT_EQ(run.text, "Compiling 'counter_pkg.vhd'\nCompiling 'counter.vhd'\n"
                        "Compiling 'counter_tb.vhd'\n");
    EXPECT_EQ(run.status, 0);
}

TEST_F(RealGhdl, BrokenExampleHasThreeErrorsInTwoFiles) {
    copy_example("counter_broken");
    const BrixRun run =
        run_brix({"-q", "-a", "counter_pkg.vhd", "-a", "counter.vhd", "-b", "counter_tb.vhd"});
    EXPECT_EQ(run.text,
              "Compiling 'counter_pkg.vhd'\n"
              "Compiling 'counter.vhd'\n"
              "counter.vhd (line 38, col 10):  no declaration for \"enabled\"\n"
              "Compiling 'counter_tb.vhd'\n"
              "counter_tb.vhd (line 15, col 34):  can't match integer literal with type physical "
              "type \"time\"\n"
              "counter_tb.vhd (line 73, col 12):  can't match character literal '0' with type "
              "direction\n");
    EXPECT_EQ(run.status, 1);
}

TEST_F(RealGhdl, PipelineExampleCompilesTwiceInTwoLibraries) {
    copy_example("pipeline");
    std::vector<std::string> words{"-q"};
    for (const char* name : {"bits", "adder", "shifter", "multiplier", "register_bank", "ram",
                             "fifo", "serial_sender", "serial_receiver"})
        words.insert(words.end(), {"-ablocks", std::string("parts/") + name + ".vhd"});
    for (const char* name : {"isa", "assembler", "program", "alu", "stages", "code_memory",
                             "fetch_stage", "hazard_unit", "decode_stage", "forwarding_unit",
                             "execute_stage", "memory_stage", "core", "system"})
        words.insert(words.end(), {"-a", std::string("cpu/") + name + ".vhd"});
    words.insert(words.end(), {"-b", "cpu/system_tb.vhd"});
    std::vector<const char*> arguments;
    for (const std::string& word : words)
        arguments.push_back(word.c_str());
    for (int i = 0; i < 2; ++i) {
        const BrixRun run = run_brix(arguments);
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(std::count(run.text.begin(), run.text.end(), '\n'), 24) << run.text;
    }
    EXPECT_TRUE(std::filesystem::exists("blocks/blocks-obj08.cf"));
    EXPECT_TRUE(std::filesystem::exists("work/work-obj08.cf"));
}

struct Row {
    const char* what;
    const char* source;
    const char* lines; ///< behind the "Compiling" line
    int status;
};

TEST_F(RealGhdl, ItsMessagesBecomeOurLines) {
    const Row rows[] = {
        {"behind tabs",
         "entity e is end;\narchitecture a of e is\nbegin\n\t  x\t<= y;\n\r\n\tz <= '1';\r\nend;\n",
         "t.vhd (line 4, col 4):  no declaration for \"x\"\n"
         "t.vhd (line 4, col 9):  no declaration for \"y\"\n"
         "t.vhd (line 6, col 2):  no declaration for \"z\"\n",
         1},
        {"what was found instead",
         "entity e is end;\narchitecture a of e is\nbegin\n  process begin\n    if true than "
         "null;\n"
         "    end if; wait;\n  end process;\nend;\n",
         "t.vhd (line 5, col 13):  'then' is expected here\n    (found: an identifier)\n"
         "t.vhd (line 5, col 18):  \"<=\" or \":=\" expected instead of 'null'\n",
         1},
        {"two declarations", "package p is\n  signal s : bit;\n\tsignal s : bit;\nend;\n",
         "t.vhd (line 3, col 9):  identifier \"s\" already used for a declaration\n"
         "    previous declaration: signal \"s\" (line 2, col 10)\n",
         1},
        {"libraries and units that are not there",
         "library nolib;\nuse nolib.p.all;\nuse work.q.all;\nentity e is end;\n",
         "t.vhd (line 1, col 9):  cannot find resource library \"nolib\"\n"
         "t.vhd (line 2, col 11):  unit \"p\" not found in library \"nolib\"\n"
         "t.vhd (line 3, col 10):  unit \"q\" not found in library \"work\"\n",
         1},
        {"nothing in it", "",
         "t.vhd (line 1, col 1):  design file is empty (no design unit found)\n", 1},
        {"a warning only",
         "entity e is end;\narchitecture a of e is\n  constant c : integer := 1 / "
         "0;\nbegin\nend;\n",
         "t.vhd (line 3, col 29):  Warning: division by 0 [-Wruntime-error]\n", 0},
        {"an instance that nothing is bound to",
         "entity e is end;\narchitecture a of e is\n  component c is end component;\nbegin\n"
         "\tu : c;\nend;\n",
         "t.vhd (line 5, col 2):  Warning: instance \"u\" of component \"c\" is not bound "
         "[-Wbinding]\n    (in default configuration of e(a)) (line 2, col 14)\n",
         0},
    };
    for (const Row& row : rows) {
        std::filesystem::remove_all("work");
        scratch.write("t.vhd", row.source);
        const BrixRun run = run_brix({"-q", "-b", "t.vhd"});
        EXPECT_EQ(run.text, std::string("Compiling 't.vhd'\n") + row.lines) << row.what;
        EXPECT_EQ(run.status, row.status) << row.what;
    }
}

TEST_F(RealGhdl, FilesThatCannotBeReadAndOddNames) {
    scratch.make_directory("d.vhd");
    scratch.write("-x.vhd", "entity x is end;\nbad\n");
    const std::string absolute = scratch.path("good.vhd");
    scratch.write("good.vhd", "entity good is end;\n");
    const BrixRun run =
        run_brix({"-q", "gone.vhd", "d.vhd", "-a", "-x.vhd", "-aother", absolute.c_str()});
    EXPECT_EQ(run.text, "Compiling 'gone.vhd'\ngone.vhd:  cannot open gone.vhd\n"
                        "Compiling 'd.vhd'\nd.vhd:  cannot open d.vhd\n"
                        "Compiling '-x.vhd'\n"
                        "-x.vhd (line 2, col 1):  missing entity, architecture, package or "
                        "configuration\n"
                        "Compiling '" +
                            absolute + "'\n");
    EXPECT_EQ(run.status, 1);
}

TEST_F(RealGhdl, LibrariesSeeEachOtherUnderTheChosenStandard) {
    scratch.write("p.vhd", "package p is constant c : integer := 1; end;\n");
    scratch.write("use.vhd", "library lib; use lib.p.all;\nentity u is generic (g : integer := c); "
                             "end;\n");
    scratch.write("new.vhd", "entity n is end;\narchitecture a of n is signal s : bit; begin\n"
                             "process (all) begin s <= '1'; end process; end;\n");
    EXPECT_EQ(run_brix({"-q", "-v93", "-aLib", "p.vhd", "use.vhd"}).status, 0);
    // A library made by an earlier run is found, for the same standard only.
    EXPECT_EQ(run_brix({"-q", "-v93", "use.vhd"}).status, 0);
    EXPECT_EQ(run_brix({"-q", "use.vhd"}).status, 1);
    EXPECT_EQ(run_brix({"-q", "new.vhd"}).status, 0);
    for (const char* standard : {"-v93", "-v87", "-v2"})
        EXPECT_EQ(run_brix({"-q", standard, "new.vhd"}).status, 1) << standard;
}

TEST_F(RealGhdl, EveryUnusedUnitIsElaboratedOnce) {
    scratch.write("leaf.vhd", "entity leaf is port (x : in bit); end;\n"
                              "architecture a of leaf is begin end;\n");
    scratch.write("top.vhd",
                  "entity one is end;\narchitecture a of one is\n  component miss is end component;"
                  "\nbegin\n  u : miss;\nend;\n"
                  "entity two is end;\narchitecture a of two is begin\n"
                  "  u : entity work.one;\n  v : entity work.leaf port map ('1');\nend;\n"
                  "configuration three of two is for a end for; end;\n");
    const BrixRun run = run_brix({"-q", "leaf.vhd", "-b", "top.vhd"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.text,
              "Compiling 'leaf.vhd'\nCompiling 'top.vhd'\n"
              "top.vhd (line 5, col 3):  Warning: instance \"u\" of component \"miss\" is "
              "not bound [-Wbinding]\n"
              "    (in default configuration of one(a)) (line 2, col 14)\n");
    // The source of what lies below was changed after it was compiled.
    scratch.write("leaf.vhd", "entity leaf is end;\n");
    EXPECT_EQ(run_brix({"-q", "-b", "top.vhd"}).status, 1);
}

TEST_F(RealGhdl, ALibraryFileThatIsDamaged) {
    scratch.write("good.vhd", "entity good is end;\n");
    scratch.make_directory("work");
    scratch.write("work/work-obj08.cf", "what is this\n");
    const BrixRun run = run_brix({"-q", "good.vhd", "good.vhd"});
    EXPECT_EQ(run.status, 5);
    EXPECT_TRUE(run.text.ends_with("bad library format\n")) << run.text;
}

} // namespace
} // namespace pellux
