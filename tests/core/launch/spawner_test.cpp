#include "tests/core/launch/spawner_fixture.h"
#include "tests/support/captured_reports.h"

#include <memory>

namespace pellux {
namespace {

TEST_F(SpawnerTest, OneChildAtATimeAndItsStatusIsKept) {
    static std::string s_told;
    s_told.clear();
    Spawner spawner([](const char* text, int done, int status) {
        s_told += done != 0 ? "end " + std::to_string(status) : text;
    });
    EXPECT_EQ(spawner.status(), -1);
    EXPECT_EQ(spawner.wait(), -1);
    ASSERT_TRUE(launch(spawner, "hello " + says("line 1\nline 2\n") + " end=77"));
    const char* const argv[] = {"none", nullptr};
    EXPECT_EQ(spawner.launch("/no/such/program", argv).status, LaunchStatus::still_running);
    EXPECT_EQ(spawner.status(), 0);
    EXPECT_EQ(spawner.wait(), 77);
    EXPECT_EQ(spawner.wait(), 77);
    EXPECT_EQ(s_told, "line 1\nline 2\nend 77");
}

TEST_F(SpawnerTest, ArgumentsArriveAsTheyAreOnTheCommandLineOrInTheResponseFile) {
    const std::string longer(200, 'x');
    const struct {
        Words words;
        std::string told;
    } rows[] = {{{"words", "a b", "", "\"q\\\"", "\xFF"}, "[words][a b][][\"q\\\"][\xFF]"},
                {{"words", longer, "a b"}, "[@brix.rsp]words " + longer + " \"a b\"\n"}};
    Spawner spawner(Log::take, &log_);
    for (const auto& row : rows) {
        EXPECT_FALSE(file_exists("brix.rsp"));
        log_ = {};
        ASSERT_TRUE(launch(spawner, row.words));
        EXPECT_EQ(spawner.wait(), 0);
        EXPECT_EQ(log_.text, row.told);
    }
}

class FailedLaunch : public SpawnerTest, protected test::CapturedReports {};

TEST_F(FailedLaunch, IsToldWithItsCauseAndPath) {
    const std::string here = directory_.path();
    const std::string argument(200, 'x');
    const struct {
        const char* program;
        const char* argument;
        std::string told;
        bool has_channel = true;
    } rows[] = {
        {"/no/such/program", nullptr, "Can't run '/no/such/program'."},
        {"./brix.rsp", nullptr, "Can't run './brix.rsp'."},
        {k_child.c_str(), argument.c_str(), "Can't write '" + here + "/brix.rsp': Is a directory."},
        {k_child.c_str(), nullptr,
         "Can't talk to the compiler through '/no_directory/pellux' (a directory of yours, mode "
         "700): No such file or directory.",
         false},
    };
    ASSERT_FALSE(failed(make_directory("brix.rsp")));
    for (const auto& row : rows) {
        const test::ScopedVariable runtime("XDG_RUNTIME_DIR",
                                           row.has_channel ? here.c_str() : "/no_directory");
        said_.clear();
        Spawner spawner(Log::take, &log_);
        const char* const argv[] = {"none", row.argument, nullptr};
        tell_launch_failure(spawner.launch(row.program, argv));
        if (row.has_channel)
            tell_launch_failure(Spawner::run(row.program, argv));
        EXPECT_EQ(said_, std::vector<std::string>(row.has_channel ? 2 : 1, row.told));
        EXPECT_FALSE(spawner.running());
    }
    Spawner spawner(Log::take, &log_);
    ASSERT_TRUE(launch(spawner, "hello end=0"));
    EXPECT_EQ(spawner.wait(), 0);
    EXPECT_EQ(log_.ends, 1);
}

TEST_F(SpawnerTest, AChildHasTwentySecondsToConnectAndTwoToCloseWhenItIsHalted) {
    ManualClock clock;
    Spawner spawner(Log::take, &log_);
    spawner.halt();
    ASSERT_TRUE(launch(spawner, "stay"));
    clock.advance(19999);
    run_turn(TurnWait::none);
    EXPECT_TRUE(spawner.running());
    clock.advance(1);
    run_turn(TurnWait::none);
    EXPECT_FALSE(spawner.running());
    EXPECT_EQ(log_.status, 1);
    ASSERT_TRUE(launch(spawner, "stay"));
    spawner.halt();
    EXPECT_EQ(spawner.wait(), 1);
    // One that did connect closes by itself or is ended.
    ASSERT_TRUE(launch(spawner, "hello say= asked end=9"));
    hear(spawner);
    spawner.halt();
    EXPECT_EQ(spawner.wait(), 9);
    ASSERT_TRUE(launch(spawner, "hello say= stay"));
    hear(spawner);
    spawner.halt();
    clock.advance(1999);
    run_turn(TurnWait::none);
    EXPECT_TRUE(process_exists(spawner.child_window()));
    clock.advance(1);
    EXPECT_EQ(spawner.wait(), 1);
    EXPECT_FALSE(process_exists(spawner.child_window()));
    EXPECT_EQ(log_.ends, 4);
}

TEST_F(SpawnerTest, QuittingTheLoopEndsTheWait) {
    log_.quit_at_text = true;
    Spawner spawner(Log::take, &log_);
    ASSERT_TRUE(launch(spawner, "hello say=x stay"));
    EXPECT_EQ(spawner.wait(), -1);
    EXPECT_TRUE(spawner.running());
}

TEST_F(SpawnerTest, ACallbackMayEndItsSpawner) {
    struct Holder {
        std::unique_ptr<Spawner> spawner;
        int calls = 0;
    } holder;
    const auto end_it = [](void* context, const char*, int, int) {
        Holder& self = from_context<Holder>(context);
        ++self.calls;
        self.spawner.reset();
    };
    for (const std::string steps :
         {"flood=50", "hello say=x signal=9", "hello end=3 say=x end=4"}) {
        holder.calls = 0;
        holder.spawner = std::make_unique<Spawner>(end_it, &holder);
        ASSERT_TRUE(launch(*holder.spawner, steps));
        while (holder.spawner != nullptr)
            run_turn(TurnWait::until_event);
        run_turn(TurnWait::none);
        EXPECT_EQ(holder.calls, 1);
    }
}

} // namespace
} // namespace pellux
