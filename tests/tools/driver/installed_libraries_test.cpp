#include "tests/support/run_program.h"
#include "tests/support/scratch.h"

namespace pellux {
namespace {

namespace fs = std::filesystem;

/// An installation of two libraries without GHDL's files, whose sources are named so that their
/// order by name is none to analyse them in.
struct InstalledLibraries : testing::Test {
    Scratch scratch;
    test::ScopedVariable install{"VELMORA_DIR", scratch.path("tree").c_str()};
    test::ScopedVariable cache{"XDG_CACHE_HOME", scratch.path("cache").c_str()};

    void SetUp() override {
        const auto add = [&](const std::string& library, const std::string& name,
                             const std::string& text) {
            scratch.write("tree/lib/" + library + "/src/" + name + ".vhd", text);
            scratch.write("tree/lib/" + library + "/work/" + name + ".vif",
                          "../src/" + name + ".vhd\n");
        };
        add("lgates", "a_gate",
            "#$ DEVICE cpld32\nuse work.b_types.all;\nlibrary lbase; use lbase.base.all;\n"
            "entity a_gate is port (x : in wire_set; y : out bit); end;\n"
            "architecture rtl of a_gate is begin y <= x(width); end;\n");
        add("lgates", "b_types",
            "library lbase; use lbase.base.all;\n"
            "package b_types is type wire_set is array (0 to width) of bit; end;\n");
        add("lgates", "c_newer", "package c_newer is generic (n : integer); end;\n");
        add("lbase", "base", "package base is constant width : integer := 3; end;\n");
        add("lother", "other", "no vhdl\n");
        scratch.write("top.vhd", "library lgates; use lgates.b_types.all;\n"
                                 "entity top is end;\narchitecture rtl of top is\n"
                                 "signal x : wire_set; signal y : bit;\nbegin\n"
                                 "g : entity lgates.a_gate port map (x, y);\nend;\n");
    }
};

TEST_F(InstalledLibraries, AreAnalysedForTheUserAsFarAsTheyAreNamed) {
    // One is shipped with its source in the library's own directory.
    fs::rename("tree/lib/lbase/src/base.vhd", "tree/lib/lbase/work/base.vhd");
    fs::remove("tree/lib/lbase/work/base.vif");
    const auto before = scratch.files("tree");
    const std::string base = "Preparing installed library 'lbase' for this standard and GHDL.\n";
    const std::string gates = "Preparing installed library 'lgates' for this standard and GHDL.\n";
    ToolRun run = run_brix({"-q", "-m", "-b", "top.vhd"});
    EXPECT_EQ(run.text, base + gates + "Compiling 'top.vhd'\n");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run_brix({"-q", "-m", "-yu", "-yv2", "-b", "top.vhd"}).text, "Compiling 'top.vhd'\n");
    // Another standard has its own analysis, in which one source has no place.
    run = run_brix({"-q", "-m", "-v93", "-b", "top.vhd"});
    EXPECT_EQ(run.text, base + gates +
                            "BRIX:  Warning: Installed library 'lgates': GHDL refuses 1 of its 3 "
                            "files, the first is '" +
                            scratch.path("tree/lib/lgates/src/c_newer.vhd") +
                            "'.\nCompiling 'top.vhd'\n");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run_brix({"-q", "-m", "-v93", "-b", "top.vhd"}).text, "All files are up to date.\n");
    EXPECT_EQ(run_program("brixsim", {"-q", "top.vhd"}).text,
              "Simulating 'top'\nWaveform of 'top' in 'top.vcd'.\n");
    EXPECT_EQ(scratch.files("tree"), before);

    // A later installation is noticed, a half-made analysis made anew.
    scratch.write("tree/lib/lbase/work/base.vhd",
                  "package base is constant width : integer := 31; end;\n");
    for (const auto& entry : fs::directory_iterator("cache/pellux/libraries")) {
        if (entry.path().filename().string().starts_with("lgates"))
            fs::remove(entry.path() / "made-from");
    }
    EXPECT_EQ(run_brix({"-q", "-m", "-b", "top.vhd"}).text, base + gates + "Compiling 'top.vhd'\n");
}

TEST_F(InstalledLibraries, AreReadAsTheyLieWhereTheyFit) {
    // Made in a project and moved into the installation.
    const Words words = test::words_of("-q -albase tree/lib/lbase/src/base.vhd -algates "
                                       "tree/lib/lgates/src/b_types.vhd -algates "
                                       "tree/lib/lgates/src/a_gate.vhd");
    {
        const test::ScopedVariable none{"VELMORA_DIR", scratch.path("none").c_str()};
        ASSERT_EQ(run_brix(words).status, 0);
    }
    for (const std::string library : {"lbase", "lgates"}) {
        fs::copy(library, "tree/lib/" + library + "/work",
                 fs::copy_options::recursive | fs::copy_options::skip_existing);
        fs::remove_all(library);
    }
    EXPECT_EQ(run_brix({"-q", "-m", "-b", "top.vhd"}).text, "Compiling 'top.vhd'\n");
    fs::rename("tree", "moved");
    const test::ScopedVariable moved{"VELMORA_DIR", scratch.path("moved").c_str()};
    EXPECT_EQ(run_brix({"-q", "-b", "top.vhd"}).text, "Compiling 'top.vhd'\n");
    // An analysis that is older than GHDL's own libraries is none for this GHDL.
    std::string file = scratch.read("moved/lib/lbase/work/lbase-obj08.cf");
    file.replace(file.find(" \"20") + 2, 4, "1999");
    scratch.write("moved/lib/lbase/work/lbase-obj08.cf", file);
    scratch.write("top.vhd", "use lbase.base.all; entity top is end;\n");
    EXPECT_TRUE(
        run_brix({"-q", "top.vhd"}).text.starts_with("Preparing installed library 'lbase'"));
}

} // namespace
} // namespace pellux
