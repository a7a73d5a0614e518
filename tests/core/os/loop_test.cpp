#include "tests/support/running.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace pellux {
namespace {

std::string g_log;

struct LoopTest : testing::Test {
    LoopTest() {
        install_loop(nullptr);
        g_log.clear();
    }
};

/// What a timer or posted call does: it logs its name.
struct Logging {
    std::string name;
    std::function<void()> also;

    static void run(void* self) {
        const auto& logging = *static_cast<Logging*>(self);
        g_log += logging.name;
        if (logging.also)
            logging.also();
    }
};

struct LoggingTimer : Logging, Timer {
    explicit LoggingTimer(const char* its_name, std::function<void()> more = {})
        : Logging{its_name, std::move(more)}, Timer{run, static_cast<Logging*>(this)} {}
    ~LoggingTimer() { stop_timer(*this); }
};

struct LoggingCall : Logging, PostedCall {
    explicit LoggingCall(const char* its_name, std::function<void()> more = {})
        : Logging{its_name, std::move(more)}, PostedCall{run, static_cast<Logging*>(this)} {}
    ~LoggingCall() { cancel_call(*this); }
};

/// A pipe whose read end is watched.
struct WatchedPipe : Pipe {
    DescriptorWatch watch;
    int calls = 0;
    std::function<void()> also;

    WatchedPipe() {
        watch.handle = read_end.get();
        watch.context = this;
        watch.ready = [](void* self, bool, bool) {
            auto& pipe = *static_cast<WatchedPipe*>(self);
            ++pipe.calls;
            if (pipe.also)
                pipe.also();
        };
        watch_descriptor(watch);
    }
    ~WatchedPipe() { unwatch_descriptor(watch); }
    void fill() const {
        EXPECT_FALSE(failed(write_handle(write_end.get(), std::as_bytes(std::span("x\n", 2)))));
    }
    void empty() const { EXPECT_EQ(read('\n'), "x"); }
};

TEST_F(LoopTest, TimersComeByDueTimeAndRepeatOnceHoweverLateTheyAre) {
    ManualClock clock;
    const std::int64_t wall = wall_seconds();
    LoggingTimer a("a"), b("b"), c("c"), d("d");
    start_timer(a, 30);
    start_timer(b, 10);
    start_timer(c, 20);
    start_timer(d, 20);
    clock.advance(9);
    EXPECT_EQ(run_turn(TurnWait::until_event), TurnResult::idle);
    clock.advance(26);
    EXPECT_EQ(run_turn(TurnWait::none), TurnResult::progressed);
    EXPECT_EQ(g_log, "bcda");
    EXPECT_EQ(run_turn(TurnWait::none), TurnResult::idle);
    stop_timer(c);
    stop_timer(c);
    start_timer(d, 100);
    clock.advance(25);
    run_turn(TurnWait::none);
    EXPECT_EQ(g_log, "bcdaba");
    clock.advance(1000 - 9 - 26 - 25);
    EXPECT_EQ(wall_seconds(), wall + 1);
}

TEST_F(LoopTest, DueTimerCanBeDestroyedByAnother) {
    ManualClock clock;
    auto second = std::make_unique<LoggingTimer>("2");
    LoggingTimer first("1", [&] {
        second.reset();
        stop_timer(first);
    });
    LoggingTimer third("3");
    for (LoggingTimer* timer : {&first, second.get(), &third})
        start_timer(*timer, 5);
    clock.advance(50);
    run_turn(TurnWait::none);
    run_turn(TurnWait::none);
    EXPECT_EQ(g_log, "13");
}

TEST_F(LoopTest, PostedCallsKeepOrderAndWaitForTheNextTurn) {
    int left = 1;
    auto doomed = std::make_unique<LoggingCall>("x");
    LoggingCall again("a", [&] {
        doomed.reset();
        if (left-- > 0)
            post_call(again);
    });
    LoggingCall last("z");
    post_call(again);
    post_call(*doomed);
    post_call(last);
    post_call(again);
    EXPECT_EQ(run_turn(TurnWait::until_event), TurnResult::progressed);
    EXPECT_EQ(g_log.substr(0, 2), "az");
    run_turn(TurnWait::until_event);
    EXPECT_EQ(g_log, "aza");
    post_call(last);
    cancel_call(last);
    cancel_call(last);
    EXPECT_EQ(run_turn(TurnWait::until_event), TurnResult::idle);
    post_call(again);
    post_call(last);
    cancel_call(last);
    post_call(last);
    run_turn(TurnWait::none);
    EXPECT_EQ(g_log, "azaaz");
}

TEST_F(LoopTest, ReadyDescriptorCanBeRemovedByAnother) {
    std::unique_ptr<WatchedPipe> pipes[2];
    int calls = 0;
    for (std::size_t i = 0; i < 2; ++i) {
        pipes[i] = std::make_unique<WatchedPipe>();
        pipes[i]->fill();
        pipes[i]->also = [&, i] {
            ++calls;
            pipes[i]->empty();
            pipes[1 - i].reset();
        };
    }
    EXPECT_EQ(run_turn(TurnWait::until_event), TurnResult::progressed);
    EXPECT_EQ(run_turn(TurnWait::none), TurnResult::idle);
    EXPECT_EQ(calls, 1);
}

TEST_F(LoopTest, NestedTurnLeavesNoStaleEventBehind) {
    WatchedPipe a, b;
    for (WatchedPipe* pipe : {&a, &b}) {
        pipe->fill();
        pipe->also = [pipe] {
            pipe->empty();
            run_turn(TurnWait::none);
        };
    }
    run_turn(TurnWait::until_event);
    run_turn(TurnWait::none);
    EXPECT_EQ(a.calls, 1);
    EXPECT_EQ(b.calls, 1);
}

TEST_F(LoopTest, WatchTellsOnlyWhatIsWanted) {
    WatchedPipe pipe;
    pipe.watch.wants_read = false;
    watch_descriptor(pipe.watch);
    pipe.write_end.reset();
    EXPECT_EQ(run_turn(TurnWait::none), TurnResult::idle) << "an end was told to a deaf watch";
    EXPECT_EQ(run_turn(TurnWait::until_event), TurnResult::idle);
    pipe.watch.wants_read = true;
    watch_descriptor(pipe.watch);
    EXPECT_EQ(run_turn(TurnWait::until_event), TurnResult::progressed);
    EXPECT_EQ(pipe.calls, 1);
    // A real timer ends the sleep.
    LoggingTimer timer("t");
    pipe.watch.wants_read = false;
    watch_descriptor(pipe.watch);
    start_timer(timer, 1);
    EXPECT_EQ(run_turn(TurnWait::until_event), TurnResult::progressed);
    EXPECT_EQ(g_log, "t");
}

TEST_F(LoopTest, QuitStaysUntilALoopIsInstalled) {
    LoggingCall quitter("q", quit_loop);
    LoggingCall later("l");
    post_call(quitter);
    EXPECT_EQ(run_turn(TurnWait::until_event), TurnResult::quit);
    post_call(later);
    EXPECT_EQ(run_turn(TurnWait::until_event), TurnResult::quit);
    EXPECT_EQ(g_log, "q");

    LoopOperations other;
    other.turn = [](void*, TurnWait) { return TurnResult::idle; };
    install_loop(&other);
    EXPECT_EQ(run_turn(TurnWait::until_event), TurnResult::idle);
    install_loop(nullptr);
    EXPECT_EQ(run_turn(TurnWait::until_event), TurnResult::progressed);
    EXPECT_EQ(g_log, "ql");
}

} // namespace
} // namespace pellux
