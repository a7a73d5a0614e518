#include "tests/support/run_program.h"
#include "tests/support/scratch.h"

namespace pellux {
namespace {

/// With the installed GHDL, whose words this holds our reading of it against.
TEST(RealGhdl, ReadsItsLibrariesAgainWhateverTheDirectories) {
    const Scratch scratch;
    // GHDL writes each of these names, but takes a library that holds it for damaged.
    scratch.write("\xC3\x9F/p.vhd", "package p is constant n : integer := 1; end;\n");
    scratch.write("\xC3\x9F/\xC3\x80\"/t.vhd", "entity t is generic (g : bit := work.p.n); end;\n");
    const Words words = {"-q", "-m", "p.vhd", "\xC3\x80\"/t.vhd"};
    {
        const test::ScopedDirectory inside("\xC3\x9F");
        ToolRun run = run_brix(words);
        EXPECT_EQ(run.text,
                  "Compiling 'p.vhd'\nCompiling '\xC3\x80\"/t.vhd'\n\xC3\x80\"/t.vhd (line 1, "
                  "col 40):  can't match 'n' with type bit\n");
        scratch.write("\xC3\x9F/\xC3\x80\"/t.vhd", "use work.p.all; package t is end;\n");
        EXPECT_EQ(run_brix(words).text, "Compiling '\xC3\x80\"/t.vhd'\n");
        EXPECT_EQ(run_brix(words).text, "All files are up to date.\n");
        scratch.write("\xC3\x9F/s.vhd",
                      "use work.p.all; entity s is end; architecture a of s is begin\n"
                      "assert n = 2 report \"n\"; end;\n");
        EXPECT_EQ(run_brix({"-q", "-b", "s.vhd"}).status, 0);
        run = run_program("brixsim", {"-q", "s.vhd"});
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
