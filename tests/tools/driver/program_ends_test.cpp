#include "core/os/loop.h"
#include "tests/tools/driver/environment.h"

#include <algorithm>
#include <csignal>

namespace pellux {
namespace {

/// Both programs with the fake GHDL, and a library in which the simulator finds its units.
struct ProgramEnds : testing::Test, FakeGhdl {
    void SetUp() override {
        write_units("good.vhd endless.vhd run_hang.vhd run_twice.vhd");
        ASSERT_EQ(run_brix({"-q", "good.vhd", "run_hang.vhd", "run_twice.vhd"}).status, 0);
        remember();
    }
};

TEST_F(ProgramEnds, WhoeverEndsItEndsGhdlAndLeavesNothing) {
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {"BRIX.EXE", "endless.vhd", "(line 4"}, {"brixsim", "run_hang.vhd", "runs"}};
    for (const auto& [tool, file, running] : rows) {
        for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
            Process process;
            const OwnedHandle output = start_program(process, tool, {file});
            const std::string text = read_until(output, running);
            ::kill(static_cast<pid_t>(process.id), signal);
            EXPECT_EQ(status_of(wait_for_process(process)), 1) << text;
            expect_nothing_left();
        }
        Environment closing{tool};
        closing.close_at = running;
        closing.answers = false;
        closing.run({file}, 1);
        expect_nothing_left();
        Process process;
        {
            Environment lost{tool};
            lost.start(process, {file});
            while (lost.text.find(running) == std::string::npos)
                run_turn(TurnWait::until_event);
        }
        EXPECT_EQ(status_of(wait_for_process(process)), 1);
        expect_nothing_left();
    }
}

TEST_F(ProgramEnds, EveryWayToFailHasItsStatusAndOneLine) {
    scratch.write("afile", "");
    scratch.write("bad.rsp", "@again.rsp");
    scratch.write("bad.bpr", "what is this");
    scratch.write("new.vhd", "");
    std::filesystem::create_symlink("nowhere", "dangling");
    write_project("none.bpr", {"good.vhd"}, "", "", -1);
    write_project("gone.bpr", {"good.vhd"}, "", "gone", -1);
    write_project("old.bpr", {"run_twice.vhd"}, "run_twice.vhd", "", 93);
    remember();
    const struct {
        const char* tool;
        int status;
        std::vector<const char*> lines;
    } rows[] = {
        {"BRIX.EXE", 2, {"", "-zz good.vhd", "@gone.rsp", "@bad.rsp", "@."}},
        {"BRIX.EXE", 5, {"-astd good.vhd", "-aafile good.vhd", "-adangling good.vhd"}},
        {"brixsim",
         1,
         {"gone.vhd", "new.vhd", "-v93 good.vhd", "-ugone good.vhd", "none.bpr", "gone.bpr",
          "old.bpr", "bad.bpr"}},
        {"brixsim", 2, {"", "-zz good.vhd", "good.vhd new.vhd", "good.vhd @bad.rsp", "@gone.rsp"}},
        {"brixsim", 4, {"-onowhere/w good.vhd", "-o. good.vhd"}},
    };
    for (const auto& row : rows) {
        for (const char* line : row.lines) {
            const Words words = test::words_of(std::string("-q ") + line);
            const ToolRun run = run_program(row.tool, words);
            EXPECT_EQ(run.status, row.status) << run.text;
            EXPECT_EQ(std::count(run.text.begin(), run.text.end(), '\n'), 1) << run.text;
            Environment environment{row.tool};
            environment.run(words, row.status);
            EXPECT_EQ(environment.text, run.text);
            expect_nothing_left();
        }
    }
    EXPECT_EQ(run_brix({"-q", "-zz"}).text, "BRIX:  Unknown switch '-zz'.\n");
    for (const char* tool : {"BRIX.EXE", "brixsim"}) {
        EXPECT_EQ(run_program(tool, {"-%bpipe1023", "good.vhd"}).status, 2);
        const test::ScopedVariable no_path("PATH", scratch.path().c_str());
        EXPECT_EQ(run_program(tool, {"good.vhd"}).status, 3);
    }
    {
        const test::ScopedVariable no_cache("XDG_CACHE_HOME", scratch.path("afile").c_str());
        EXPECT_EQ(run_program("brixsim", {"good.vhd"}).status, 4);
    }
    scratch.write("work/work-obj08.cf", "v 4\nfile");
    EXPECT_EQ(run_program("brixsim", {"good.vhd"}).status, 5);
}

} // namespace
} // namespace pellux
