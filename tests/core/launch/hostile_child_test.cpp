#include "tests/core/launch/spawner_fixture.h"

namespace pellux {
namespace {

std::string repeated(std::string_view text, int times) {
    std::string all;
    for (int i = 0; i < times; ++i)
        all += text;
    return all;
}

/// What a child does, and what comes of it.
struct Row {
    const char* what;
    Words steps;
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
        EXPECT_TRUE(turn_until_alone());
        EXPECT_TRUE(log_.text == row.text) << log_.text.substr(0, 200);
        EXPECT_EQ(log_.status, row.status);
        EXPECT_EQ(log_.ends, 1);
        EXPECT_EQ(spawner_.status(), row.status);
    }

    ManualClock clock_; ///< no row needs a timer
    Spawner spawner_{Log::take, &log_};
};

TEST_F(HostileChild, StatusComesFromTheCompletionAloneAndIsOneWithoutIt) {
    for (const char* end : {"exit=0", "exit=77", "exit=255", "signal=11", "signal=9"}) {
        play({end, {end}, "", 1});
        play({end, {"hello", says("last words"), end}, "last words", 1});
    }
    for (const std::uint32_t status : {0U, 1U, 77U, 255U, 0x80000005U})
        play({"completes",
              {"hello", says("x"), completes(status), "exit=9"},
              "x",
              static_cast<int>(status)});
    const std::string long_line(1000, 'x');
    play({"words unread at its end",
          {"hello", "times=50", says(long_line), "signal=9"},
          repeated(long_line, 50),
          1,
          true});
    play({"completion unread at its end", {"hello", says("x"), completes(7)}, "x", 7, true});
    play({"goes on after its completion, which was seen",
          {"hello", completes(3), "seen", says("after"), completes(4)},
          "after",
          3});
}

TEST_F(HostileChild, TextIsHandedOverAsItIs) {
    const std::string line = std::string(79, 'x') + "\n";
    const std::string piece(1023, 'y');
    const Row rows[] = {
        {"half a line, a pause and the rest",
         {"hello", says("half a "), "sync", says("line\n"), completes(0)},
         "half a line\n",
         0},
        {"CRs, bytes over 127, an escape sequence in two",
         {"hello", says("a\rb\r\r"), says("\xE4\xFF\x80"), says("\x1b[3"), "sync",
          says("1mred\x1b[0m"), completes(0)},
         "a\rb\r\r\xE4\xFF\x80\x1b[31mred\x1b[0m",
         0},
        {"odd packets",
         {"hello", "poke=", "poke=" + hex("?what"), "poke=" + hex("1\1"),
          says(std::string("a\0b", 3)), says(""), says(piece + "z"),
          sends(poke("", "0" + std::string(65532, 'w'))), completes(0)},
         "a" + piece + std::string(1023, 'w'),
         0},
        {"100,000 lines without a look at the replies",
         {"hello", "deaf", "times=100000", says(line), completes(3)},
         repeated(line, 100000),
         3},
    };
    for (const Row& row : rows)
        play(row);
}

TEST_F(HostileChild, DamageEndsAConnectionAndNeverTheLaunch) {
    play({"damage",
          {"hello", says("before"), sends(word(0, 4)), says("behind"), "closed", "hello",
           says(" again"), completes(3)},
          "before again",
          3});
    play({"damage only", {"connect", sends(reply(1)), "exit=0"}, "", 1});
}

TEST_F(HostileChild, EveryConnectionOfALaunchIsHeard) {
    const Words eight(8, "hello");
    Words nine = eight;
    for (const std::string& step : {std::string("connect"), std::string("closed"),
                                    std::string("use=7"), says("eighth"), completes(0)})
        nine.push_back(step);
    const Row rows[] = {
        {"a second one beside the first",
         {"hello", says("a"), "sync", "hello", says("b"), "sync", "use=0", says("c"), "sync",
          "drop", "use=1", says("d"), completes(0)},
         "abcd",
         0},
        {"a second one after the first",
         {"hello", says("a"), "sync", "drop", "hello", says("b"), completes(4)},
         "ab",
         4},
        {"one that says nothing", {"connect", "hello", says("a"), "exit=0"}, "a", 1},
        {"a ninth one is closed", nine, "eighth", 0},
        {"a grandchild has the connection",
         {"hello", says("a"), "fork", "orphan", says("b"), completes(4)},
         "ab",
         4},
        {"a grandchild ends without a word",
         {"hello", says("a"), "fork", "orphan", "exit=0"},
         "a",
         1},
        {"a grandchild connects again",
         {"hello", says("a"), "fork", "orphan", "hello", "use=0", "drop", "use=1", says("b"),
          completes(4)},
         "ab",
         4},
        {"a wrapper ends first",
         {"fork", "hello", says("a"), "sync", "orphan", says("b"), completes(6)},
         "ab",
         6},
        {"nothing relates a grandchild to us any more",
         {"hello", says("a"), "fork", "leave", "orphan", "hello", says("b"), completes(6)},
         "ab",
         6},
    };
    for (const Row& row : rows)
        play(row);
}

TEST_F(HostileChild, WatchdogIsQuietForTheChildAndWhatItStartedAlone) {
    const struct {
        const char* what;
        Words steps; ///< text "xy"
        bool quiet;
    } rows[] = {
        {"the child", {"hello", says("x"), says("y")}, true},
        {"a stranger", {"item=1", "hello", says("x"), says("y")}, false},
        {"a process that cannot be", {"item=18446744073709551615", "hello", says("xy")}, false},
        {"no number", {"item=window", "hello", says("x"), says("y")}, false},
        {"no number any more", {"hello", says("x"), "item=window", says("y")}, true},
        {"a grandchild", {"hello", says("x"), "sync", "fork", "leave", says("y")}, true},
        {"an orphan of the group", {"hello", says("x"), "sync", "fork", "orphan", says("y")}, true},
        {"an orphan that speaks",
         {"fork", "leave", "hello", says("x"), "sync", "orphan", says("y")},
         true},
        {"an orphan's dead parent",
         {"hello", says("x"), "sync", "fork", "orphan", "item=window", says("y")},
         false},
        {"an orphan's stranger",
         {"item=1", "fork", "hello", says("x"), "sync", "orphan", says("y")},
         false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        log_ = {};
        {
            Spawner spawner(Log::take, &log_);
            Words steps = row.steps;
            steps.push_back("closed");
            ASSERT_TRUE(launch(spawner, steps));
            ASSERT_TRUE(turn_until([&] { return log_.text == "xy"; }));
            while (run_turn(TurnWait::none) != TurnResult::idle)
                continue;
            EXPECT_EQ(spawner.child_window() == 0, row.what == std::string("no number"));
            // A process is still there for a while when its pipes are closed already.
            if (row.what == std::string("an orphan's dead parent")) {
                ASSERT_TRUE(turn_until([&] { return !process_exists(spawner.child_window()); }));
            }
            for (int i = 0; i < 3; ++i) {
                clock_.advance(5000);
                run_turn(TurnWait::none);
            }
            EXPECT_EQ(spawner.running(), row.quiet);
            EXPECT_EQ(log_.status, row.quiet ? -2 : 1);
        }
        EXPECT_TRUE(turn_until_alone());
    }
}

TEST_F(HostileChild, NothingThatItStartedOutlivesTheLaunch) {
    const struct {
        const char* what;
        Words steps; ///< of a grandchild, the last to speak
        int status;
        bool is_halted = false;
    } rows[] = {
        {"beside a child that takes its time", {"fork", "group", "hello", completes(3), "stay"}, 3},
        {"a child that has ended",
         {"fork", "group", "hello", says(""), "orphan", completes(4), "stay"},
         4},
        {"a child that has ended, without a word of it",
         {"fork", "group", "hello", says(""), "sync", "orphan", "drop", "stay"},
         1},
        {"a child that has ended, halted",
         {"fork", "group", "hello", says(""), "sync", "orphan", "stay"},
         1,
         true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        ASSERT_TRUE(launch(spawner_, row.steps));
        hear(spawner_);
        if (row.is_halted) {
            siginfo_t info{};
            ASSERT_EQ(::waitid(P_ALL, 0, &info, WEXITED | WNOWAIT), 0);
            while (run_turn(TurnWait::none) != TurnResult::idle)
                continue;
            spawner_.halt();
            clock_.advance(1999);
            run_turn(TurnWait::none);
            EXPECT_TRUE(process_exists(spawner_.child_window()));
            clock_.advance(1);
        }
        EXPECT_EQ(spawner_.wait(), row.status);
        clock_.advance(2000);
        EXPECT_TRUE(turn_until_alone());
        EXPECT_TRUE(turn_until([&] { return !process_exists(spawner_.child_window()); }));
    }
}

TEST_F(HostileChild, WhatAnEarlierLaunchStillSaysIsIgnored) {
    const Meeting go("go"), done("done");
    const Words first = {"hello", says("old "), completes(1), "fork"};
    const Words late = {"hello", says("late"), completes(5), "use=0", says("too late")};
    const struct {
        const char* what;
        Words grandchild;
        bool is_there_before; ///< the second launch
    } rows[] = {
        {"connects during the second launch", {"group", "meet=go"}, false},
        {"waits in the queue since before it, and cannot be related",
         {"leave", "orphan", "meet=go"},
         true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        log_ = {};
        Words steps = first;
        steps.insert(steps.end(), row.grandchild.begin(), row.grandchild.end());
        steps.insert(steps.end(), late.begin(), late.end());
        steps.push_back("invite=done");
        ASSERT_TRUE(launch(spawner_, steps));
        EXPECT_EQ(spawner_.wait(), 1);
        if (row.is_there_before) {
            ASSERT_TRUE(go.meet());
            const OwnedHandle met{static_cast<SystemHandle>(::open("done", O_RDONLY | O_CLOEXEC))};
            ASSERT_TRUE(launch(spawner_, {"hello", says("new"), completes(0)}));
        } else {
            ASSERT_TRUE(launch(spawner_, {"hello", says("new"), "meet=done", completes(0)}));
            ASSERT_TRUE(turn_until([&] { return log_.text == "old new"; }));
            ASSERT_TRUE(go.meet());
        }
        EXPECT_TRUE(turn_until_alone());
        EXPECT_EQ(log_.text, "old new");
        EXPECT_EQ(spawner_.status(), 0);
        EXPECT_EQ(log_.ends, 2);
    }
}

} // namespace
} // namespace pellux
