#include "tests/core/launch/spawner_fixture.h"

namespace pellux {
namespace {

/// What a child does, and what comes of it.
struct Row {
    const char* what;
    std::string steps;
    std::string text;
    int status;
    bool ends_first = false; ///< before anything is read from it
};

class HostileChild : public SpawnerTest {
protected:
    void play(const Row& row) {
        SCOPED_TRACE(row.what);
        log_ = {};
        ASSERT_TRUE(launch(spawner_, row.steps));
        siginfo_t info{};
        if (row.ends_first) {
            ASSERT_EQ(::waitid(P_ALL, 0, &info, WEXITED | WNOWAIT), 0);
        }
        EXPECT_TRUE(
            turn_until([&] { return log_.ends != 0 && log_.text.size() >= row.text.size(); }));
        EXPECT_TRUE(turn_until_no_child());
        EXPECT_TRUE(log_.text == row.text) << log_.text.substr(0, 200);
        EXPECT_EQ(log_.status, row.status);
        EXPECT_EQ(log_.ends, 1);
        EXPECT_EQ(spawner_.status(), row.status);
    }

    ManualClock clock_; ///< no row needs a timer
    Spawner spawner_{Log::take, &log_};
};

TEST_F(HostileChild, StatusComesFromTheCompletionAloneAndIsOneWithoutIt) {
    for (const std::string end : {"exit=0", "exit=77", "exit=255", "signal=11", "signal=9"}) {
        play({"no connection", end, "", 1});
        play({"last words", "hello say=last " + end, "last", 1});
    }
    for (const std::uint32_t status : {0U, 1U, 77U, 255U, 0x80000005U})
        play({"completes", "hello say=x end=" + std::to_string(status) + " exit=9", "x",
              static_cast<int>(status)});
    const std::string long_line(1000, 'x');
    const Row rows[] = {
        {"words unread at its end", "hello times=50 say=" + long_line + " signal=9",
         repeated(long_line, 50), 1, true},
        {"completion unread at its end", "hello say=x end=7", "x", 7, true},
        {"goes on after its completion, which was seen", "hello end=3 seen say=after end=4",
         "after", 3},
    };
    for (const Row& row : rows)
        play(row);
}

TEST_F(HostileChild, TextIsHandedOverAsItIs) {
    const std::string line = std::string(79, 'x') + "\n";
    const std::string piece(1023, 'y');
    const Row rows[] = {
        {"half a line, a pause and the rest", "hello say=half sync " + says(" line\n") + " end=0",
         "half line\n", 0},
        {"CRs, bytes over 127, an escape sequence in two",
         "hello " + says("a\rb\r\r") + " say=\xE4\xFF\x80 " + says("\x1b[3") +
             " sync say=1mred\x1b[0m end=0",
         "a\rb\r\r\xE4\xFF\x80\x1b[31mred\x1b[0m", 0},
        {"odd packets",
         "hello poke= poke=" + hex("?what") + " poke=" + hex("1\1") + " " +
             says(std::string("a\0b", 3)) + " say= say=" + piece + "z " +
             sends(poke("", "0" + std::string(65532, 'w'))) + " end=0",
         "a" + piece + std::string(1023, 'w'), 0},
        {"100,000 lines without a look at the replies",
         "hello deaf times=100000 " + says(line) + " end=3", repeated(line, 100000), 3},
    };
    for (const Row& row : rows)
        play(row);
}

TEST_F(HostileChild, EveryConnectionOfALaunchIsHeard) {
    const std::string damage = " " + sends(word(0, 4));
    const Row rows[] = {
        {"damage ends a connection and never the launch",
         "hello say=before" + damage + " say=behind closed hello say=again end=3", "beforeagain",
         3},
        {"damage only", "connect " + sends(reply(1)) + " exit=0", "", 1},
        {"a second one beside the first",
         "hello say=a sync hello say=b sync use=0 say=c sync drop use=1 say=d end=0", "abcd", 0},
        {"a second one after the first", "hello say=a sync drop hello say=b end=4", "ab", 4},
        {"one that says nothing", "connect hello say=a exit=0", "a", 1},
        {"a ninth one is closed", repeated("hello ", 8) + "connect closed use=7 say=eighth end=0",
         "eighth", 0},
        {"a grandchild has the connection", "hello say=a fork orphan say=b end=4", "ab", 4},
        {"a grandchild ends without a word", "hello say=a fork orphan exit=0", "a", 1},
        {"a grandchild connects again",
         "hello say=a fork orphan hello use=0 drop use=1 say=b end=4", "ab", 4},
        {"a wrapper ends first", "fork hello say=a sync orphan say=b end=6", "ab", 6},
        {"nothing relates a grandchild to us any more",
         "hello say=a fork leave orphan hello say=b end=6", "ab", 6},
    };
    for (const Row& row : rows)
        play(row);
}

TEST_F(HostileChild, WatchdogIsQuietForTheChildAndWhatItStartedAlone) {
    const std::string dead_parent = "an orphan's dead parent";
    const struct {
        std::string what;
        std::string steps; ///< text "xy"
        bool quiet;
    } rows[] = {
        {"the child", "hello say=x say=y", true},
        {"a stranger", "item=1 hello say=x say=y", false},
        {"a process that cannot be", "item=18446744073709551615 hello say=xy", false},
        {"no number", "item=window hello say=x say=y", false},
        {"no number any more", "hello say=x item=window say=y", true},
        {"a grandchild", "hello say=x sync fork leave say=y", true},
        {"an orphan of the group", "hello say=x sync fork orphan say=y", true},
        {"an orphan that speaks", "fork leave hello say=x sync orphan say=y", true},
        {dead_parent, "hello say=x sync fork orphan item=window say=y", false},
        {"an orphan's stranger", "item=1 fork hello say=x sync orphan say=y", false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        log_ = {};
        {
            Spawner spawner(Log::take, &log_);
            ASSERT_TRUE(launch(spawner, row.steps + " closed"));
            ASSERT_TRUE(turn_until([&] { return log_.text == "xy"; }));
            turn_until_idle();
            EXPECT_EQ(spawner.child_window() == 0, row.what == "no number");
            // A process is still there for a while when its pipes are closed already.
            if (row.what == dead_parent) {
                ASSERT_TRUE(turn_until([&] { return !process_exists(spawner.child_window()); }));
            }
            for (int i = 0; i < 3; ++i) {
                clock_.advance(5000);
                run_turn(TurnWait::none);
            }
            EXPECT_EQ(spawner.running(), row.quiet);
            EXPECT_EQ(log_.status, row.quiet ? -2 : 1);
        }
        EXPECT_TRUE(turn_until_no_child());
    }
}

TEST_F(HostileChild, NothingThatItStartedOutlivesTheLaunch) {
    const struct {
        const char* what;
        const char* steps; ///< of a grandchild, the last to speak
        int status;
        bool is_halted = false;
    } rows[] = {
        {"beside a child that takes its time", "fork group hello end=3 stay", 3},
        {"a child that has ended", "fork group hello say= orphan end=4 stay", 4},
        {"a child that has ended, without a word of it",
         "fork group hello say= sync orphan drop stay", 1},
        {"a child that has ended, halted", "fork group hello say= sync orphan stay", 1, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        ASSERT_TRUE(launch(spawner_, row.steps));
        hear(spawner_);
        if (row.is_halted) {
            siginfo_t info{};
            ASSERT_EQ(::waitid(P_ALL, 0, &info, WEXITED | WNOWAIT), 0);
            turn_until_idle();
            spawner_.halt();
            clock_.advance(1999);
            run_turn(TurnWait::none);
            EXPECT_TRUE(process_exists(spawner_.child_window()));
            clock_.advance(1);
        }
        EXPECT_EQ(spawner_.wait(), row.status);
        clock_.advance(2000);
        EXPECT_TRUE(turn_until_no_child());
        EXPECT_TRUE(turn_until([&] { return !process_exists(spawner_.child_window()); }));
    }
}

TEST_F(HostileChild, WhatAnEarlierLaunchStillSaysIsIgnored) {
    const Meeting go("go"), done("done");
    const struct {
        const char* what;
        std::string grandchild;
        bool is_there_before; ///< the second launch
    } rows[] = {
        {"connects during the second launch", "group meet=go", false},
        {"waits in the queue since before it, and cannot be related", "leave orphan meet=go", true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        log_ = {};
        const std::string steps = "hello say=old end=1 fork " + row.grandchild +
                                  " hello say=late end=5 use=0 say=late invite=done";
        ASSERT_TRUE(launch(spawner_, steps));
        EXPECT_EQ(spawner_.wait(), 1);
        if (row.is_there_before) {
            ASSERT_TRUE(go.meet());
            const OwnedHandle met{static_cast<SystemHandle>(::open("done", O_RDONLY | O_CLOEXEC))};
            ASSERT_TRUE(launch(spawner_, "hello say=new end=0"));
        } else {
            ASSERT_TRUE(launch(spawner_, "hello say=new meet=done end=0"));
            ASSERT_TRUE(turn_until([&] { return log_.text == "oldnew"; }));
            ASSERT_TRUE(go.meet());
        }
        EXPECT_TRUE(turn_until_no_child());
        EXPECT_EQ(log_.text, "oldnew");
        EXPECT_EQ(spawner_.status(), 0);
        EXPECT_EQ(log_.ends, 2);
    }
}

} // namespace
} // namespace pellux
