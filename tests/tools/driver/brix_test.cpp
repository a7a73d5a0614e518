#include "tests/tools/driver/environment.h"
#include "tools/driver/messages.h"

#include <algorithm>

namespace pellux {
namespace {

struct Brix : testing::Test, FakeGhdl {
    void SetUp() override {
        write_units("good.vhd top.vhd errors.vhd warnings.vhd flood.vhd endless.vhd silent.vhd "
                    "fault.vhd killed.vhd raw.vhd holder.vhd long.vhd forgetful.vhd");
    }
};

std::ptrdiff_t line_count(const std::string& text) {
    return std::count(text.begin(), text.end(), '\n');
}

TEST_F(Brix, UnusedUnitsOfTheTopAreElaborated) {
    scratch.write("top.vhd", "entity leaf is end; entity top is end; architecture rtl of top is\n"
                             "begin u : entity work.leaf; end;");
    const ToolRun run = run_brix({"good.vhd", "-b", "top.vhd"});
    const std::string calls = scratch.read("calls.log");
    for (const std::string subjects : {"good.vhd top.vhd", "top", "other"})
        EXPECT_NE(calls.find(" " + subjects + "\n"), calls.npos) << calls;
    EXPECT_EQ(line_count(calls), 3) << calls;
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(run.text.ends_with("Compiling 'top.vhd'\n"
                                   "/nowhere/x.vhd (line 3, col 2):  unit is missing\n"))
        << run.text;
}

TEST_F(Brix, WhateverGhdlDoesToAFileBecomesItsLines) {
    const std::pair<std::string, std::string> rows[] = {
        {"silent.vhd", ":  GHDL refused this file without a message.\n"},
        {"fault.vhd", ":  GHDL itself failed on this file (exit status 2).\n"},
        {"killed.vhd", ":  GHDL itself failed on this file (signal 9).\n"},
        {"raw.vhd", " (line 1, col 1):  a b c \n"},
        {"holder.vhd", " (line 1, col 1):  half a line\n"},
    };
    for (const auto& [file, line] : rows) {
        const ToolRun run = run_brix({"-q", file, "good.vhd"});
        EXPECT_EQ(run.status, 1) << file;
        EXPECT_TRUE(run.text.ends_with(file + line + "Compiling 'good.vhd'\n")) << run.text;
    }
    const ToolRun forgetful = run_brix({"-q", "forgetful.vhd", "good.vhd"});
    EXPECT_EQ(forgetful.status, 4);
    EXPECT_EQ(forgetful.text, "Compiling 'forgetful.vhd'\nBRIX:  Library 'work' can't be written: "
                              "GHDL left nothing; the disk may be full.\n");
}

TEST_F(Brix, TalksToTheEnvironmentAsToStandardOutput) {
    const Words words{"-q", "errors.vhd", "long.vhd", "flood.vhd", "good.vhd"};
    Environment environment;
    environment.run(words, 1);
    const ToolRun run = run_brix(words);
    EXPECT_EQ(environment.text, run.text);
    EXPECT_EQ(line_count(run.text), 4 + 5 + 10 + 20000);
    EXPECT_NE(run.text.find("col 1):  " + std::string(5000, 'x') + "\n"), std::string::npos);
    // Lines are joined: far fewer packets than lines.
    EXPECT_LT(environment.packets, 3000u);
}

TEST_F(Brix, TellsWhatRunsWithoutAFile) {
    const std::string banner = "BRIX, the VHDL compiler of Pellux, version " PELLUX_VERSION "\n";
    EXPECT_EQ(run_brix({"errors.vhd", "--version"}).text,
              banner + "GHDL 0.0 (stand-in), " PELLUX_BINARY_DIR "/tests/fake_ghdl/ghdl-mcode\n");
    const test::ScopedVariable no_path("PATH", scratch.path().c_str());
    const ToolRun run = run_brix({"--version"});
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.text, banner + "BRIX:  " + msg_no_ghdl.text() + "\n");
    for (const std::string program : {"BRIX.EXE", "brixsim"}) {
        EXPECT_EQ(std::system((k_bin + program + " -q --help >help").c_str()), 0);
        EXPECT_TRUE(scratch.read("help").starts_with("usage: " + program + " [SWITCH"));
    }
}

TEST_F(Brix, LimitsEndTheRunAndGhdl) {
    Environment limited;
    limited.run({"-q", "-e2", "endless.vhd", "good.vhd"}, 1);
    EXPECT_TRUE(limited.text.ends_with("endless.vhd (line 3, col 1):  fault\n"
                                       "endless.vhd:  Abort:  (E46) Error limit (2) exceeded\n"))
        << limited.text;
    EXPECT_FALSE(ghdl_still_runs());
}

} // namespace
} // namespace pellux
