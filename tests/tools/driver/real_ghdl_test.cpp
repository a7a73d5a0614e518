#include "tests/support/scratch.h"
#include "tests/tools/driver/run_brix.h"

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
};

TEST_F(RealGhdl, FilesThatCannotBeReadAndADamagedLibrary) {
    scratch.write("-x.vhd", "entity x is end;\nbad\n");
    EXPECT_EQ(run_brix({"-q", "gone.vhd", "-a", "-x.vhd"}).text,
              "Compiling 'gone.vhd'\ngone.vhd:  Can't read 'gone.vhd': No such file or directory\n"
              "Compiling '-x.vhd'\n"
              "-x.vhd (line 2, col 1):  missing entity, architecture, package or configuration\n");
    scratch.write("e.vhd", "entity e is end;\n");
    for (const auto& [damage, told] :
         {std::pair{"what is this\n", "was made by another version of GHDL"},
          {"v 4\nfile", "is damaged"}}) {
        scratch.write("work/work-obj08.cf", damage);
        EXPECT_EQ(run_brix({"-q", "-m", "e.vhd"}).text,
                  std::string("BRIX:  Warning: Library 'work' ") + told +
                      "; it is made anew.\nCompiling 'e.vhd'\n");
        EXPECT_EQ(run_brix({"-q", "-m", "e.vhd"}).text, "All files are up to date.\n");
    }
}

TEST_F(RealGhdl, LibrariesSeeEachOtherUnderTheChosenStandard) {
    scratch.write("p.vhd", "package p is constant c : integer := 1; end;\n");
    scratch.write("use.vhd", "library lib; use lib.p.all;\nentity u is generic (g : integer := c); "
                             "end;\n");
    scratch.write("q.vhd", "package q is end;\n");
    EXPECT_EQ(run_brix({"-q", "-v93", "-aLib", "p.vhd", "-alib", "q.vhd", "use.vhd"}).status, 0);
    // A library made by an earlier run is found, for the same standard only.
    EXPECT_EQ(run_brix({"-q", "-v93", "use.vhd"}).status, 0);
    EXPECT_EQ(run_brix({"-q", "use.vhd"}).status, 1);
}

TEST_F(RealGhdl, ReadsItsLibrariesAgainWhateverTheDirectories) {
    // GHDL writes each of these names, but takes a library that holds it for damaged.
    scratch.write("\xC3\x9F/p.vhd", "package p is constant n : integer := 1; end;\n");
    scratch.write("\xC3\x9F/\xC3\x80\"/t.vhd", "entity t is generic (g : bit := work.p.n); end;\n");
    const Words words = {"-q", "-m", "p.vhd", "\xC3\x80\"/t.vhd"};
    {
        const test::ScopedDirectory inside("\xC3\x9F");
        const ToolRun run = run_brix(words);
        EXPECT_EQ(run.text,
                  "Compiling 'p.vhd'\nCompiling '\xC3\x80\"/t.vhd'\n\xC3\x80\"/t.vhd (line 1, "
                  "col 40):  can't match 'n' with type bit\n");
        scratch.write("\xC3\x9F/\xC3\x80\"/t.vhd", "use work.p.all; package t is end;\n");
        EXPECT_EQ(run_brix(words).text, "Compiling '\xC3\x80\"/t.vhd'\n");
        EXPECT_EQ(run_brix(words).text, "All files are up to date.\n");
    }
    scratch.write("\xC3\x9F/s.vhd",
                  "use work.p.all; entity s is end; architecture a of s is begin\n"
                  "assert n = 2 report \"n\"; end;\n");
    {
        const test::ScopedDirectory inside("\xC3\x9F");
        EXPECT_EQ(run_brix({"-q", "-b", "s.vhd"}).status, 0);
        const ToolRun run = run_program("brixsim", {"-q", "s.vhd"});
        EXPECT_TRUE(run.text.starts_with("Simulating 's'\ns.vhd (line 2, col 1):  at 0ms: n\n"))
            << run.text;
    }
    std::filesystem::rename("\xC3\x9F", "\xC3\x90");
    const test::ScopedDirectory inside("\xC3\x90");
    EXPECT_EQ(run_brix(words).text, "All files are up to date.\n");
    scratch.write("\xC3\x90/\xC3\x80.vhd", "");
    ToolRun run = run_brix({"-q", "\xC3\x80.vhd"});
    EXPECT_NE(run.text.find("letters in the name of '\xC3\x80.vhd'"), std::string::npos);
    EXPECT_EQ(run.status, 1);
    const test::ScopedDirectory deeper("\xC3\x80\"");
    run = run_brix({"-q", "t.vhd"});
    EXPECT_NE(run.text.find("\"': a quote"), std::string::npos) << run.text;
    EXPECT_EQ(run.status, 5);
}

} // namespace
} // namespace pellux
