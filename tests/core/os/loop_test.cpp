#include "tests/core/os/running.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace pellux {
namespace {

std::string g_log;

struct LoopTest : testing::Test {
    LoopTest() {
        install_loop(nullptr);
        g_log.clear();
    }
};

struct LoggingTimer : Timer {
    std::string name;
    void (*also)(LoggingTimer& self) = nullptr;

    explicit LoggingTimer(const char* timer_name, void (*more)(LoggingTimer&) = nullptr)
        : name(timer_name), also(more) {
        context = this;
        expired = [](void* self) {
            auto& timer = *static_cast<LoggingTimer*>(self);
            g_log += timer.name;
            if (timer.also != nullptr)
                timer.also(timer);
        };
    }
    ~LoggingTimer() { stop_timer(*this); }
};

struct LoggingCall : PostedCall {
    std::string name;
    void (*also)(LoggingCall& self) = nullptr;

    explicit LoggingCall(const char* call_name, void (*more)(LoggingCall&) = nullptr)
        : name(call_name), also(more) {
        context = this;
        call = [](void* self) {
            auto& posted = *static_cast<LoggingCall*>(self);
            g_log += posted.name;
            if (posted.also != nullptr)
                posted.also(posted);
        };
    }
    ~LoggingCall() { cancel_call(*this); }
};

/// A pipe whose read end is watched.
struct WatchedPipe {
    OwnedHandle read_end;
    OwnedHandle write_end;
    DescriptorWatch watch;
    int calls = 0;
    void (*also)(WatchedPipe& self) = nullptr;

    WatchedPipe() {
        EXPECT_FALSE(failed(make_pipe(read_end, write_end)));
        watch.handle = read_end.get();
        watch.context = this;
        watch.ready = [](void* self, bool, bool) {
            auto& pipe = *static_cast<WatchedPipe*>(self);
            ++pipe.calls;
            if (pipe.also != nullptr)
                pipe.also(pipe);
        };
        watch_descriptor(watch);
    }
    ~WatchedPipe() { unwatch_descriptor(watch); }
    void fill() const {
        EXPECT_FALSE(failed(write_handle(write_end.get(), std::as_bytes(std::span("x", 1)))));
    }
    void empty() const {
        std::array<std::byte, 1> byte;
        std::size_t got = 0;
        bool would_wait = false;
        EXPECT_FALSE(failed(read_handle(read_end.get(), byte, got, would_wait)));
    }
};

TEST_F(LoopTest, TimersComeByDueTimeAndRepeatOnceHoweverLateTheyAre) {
    ManualClock clock;
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
    start_timer(d, 100);
    clock.advance(25);
    run_turn(TurnWait::none);
    EXPECT_EQ(g_log, "bcdaba");
}

TEST_F(LoopTest, TimerThatRestartsItselfDoesNotHoldTheTurn) {
    ManualClock clock;
    LoggingTimer timer("t", [](LoggingTimer& self) { start_timer(self, 0); });
    start_timer(timer, 0);
    clock.advance(1);
    run_turn(TurnWait::none);
    run_turn(TurnWait::none);
    EXPECT_EQ(g_log, "t");
    clock.advance(1);
    run_turn(TurnWait::none);
    EXPECT_EQ(g_log, "tt");
}

TEST_F(LoopTest, DueTimerCanBeDestroyedByAnother) {
    ManualClock clock;
    static std::unique_ptr<LoggingTimer> second;
    second = std::make_unique<LoggingTimer>("2");
    LoggingTimer first("1", [](LoggingTimer& self) {
        second.reset();
        stop_timer(self);
    });
    LoggingTimer third("3");
    start_timer(first, 5);
    start_timer(*second, 5);
    start_timer(third, 5);
    clock.advance(50);
    run_turn(TurnWait::none);
    run_turn(TurnWait::none);
    EXPECT_EQ(g_log, "13");
}

TEST_F(LoopTest, PostedCallsKeepOrderAndWaitForTheNextTurn) {
    static std::unique_ptr<LoggingCall> doomed;
    static int left;
    left = 1;
    doomed = std::make_unique<LoggingCall>("x");
    LoggingCall again("a", [](LoggingCall& self) {
        doomed.reset();
        if (left-- > 0)
            post_call(self);
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
    EXPECT_EQ(run_turn(TurnWait::until_event), TurnResult::idle);
    post_call(last);
    cancel_call(last);
    EXPECT_EQ(run_turn(TurnWait::none), TurnResult::idle);
    post_call(last);
    run_turn(TurnWait::none);
    EXPECT_EQ(g_log, "azaz");
}

TEST_F(LoopTest, ReadyDescriptorCanBeRemovedByAnother) {
    static std::unique_ptr<WatchedPipe> pipes[2];
    static int calls;
    calls = 0;
    for (int i = 0; i < 2; ++i) {
        pipes[i] = std::make_unique<WatchedPipe>();
        pipes[i]->fill();
        pipes[i]->also = [](WatchedPipe& self) {
            ++calls;
            self.empty();
            pipes[pipes[0].get() == &self ? 1 : 0].reset();
        };
    }
    EXPECT_EQ(run_turn(TurnWait::until_event), TurnResult::progressed);
    EXPECT_EQ(run_turn(TurnWait::none), TurnResult::idle);
    EXPECT_EQ(calls, 1);
    pipes[0].reset();
    pipes[1].reset();
}

TEST_F(LoopTest, NestedTurnLeavesNoStaleEventBehind) {
    static WatchedPipe* pipes[2];
    WatchedPipe a;
    WatchedPipe b;
    pipes[0] = &a;
    pipes[1] = &b;
    for (WatchedPipe* pipe : pipes) {
        pipe->fill();
        pipe->also = [](WatchedPipe& self) {
            self.empty();
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
}

TEST_F(LoopTest, WritableEndIsToldUntilThePipeIsFull) {
    WatchedPipe pipe;
    unwatch_descriptor(pipe.watch);
    set_non_blocking(pipe.write_end.get());
    pipe.watch.handle = pipe.write_end.get();
    pipe.watch.wants_read = false;
    pipe.watch.wants_write = true;
    watch_descriptor(pipe.watch);
    EXPECT_EQ(run_turn(TurnWait::until_event), TurnResult::progressed);
    const std::vector<std::byte> block(65536);
    EXPECT_FALSE(failed(write_handle(pipe.write_end.get(), block)));
    EXPECT_EQ(run_turn(TurnWait::none), TurnResult::idle);
}

TEST_F(LoopTest, RealTimerEndsTheSleep) {
    LoggingTimer timer("t");
    WatchedPipe silent;
    start_timer(timer, 1);
    EXPECT_EQ(run_turn(TurnWait::until_event), TurnResult::progressed);
    EXPECT_EQ(g_log, "t");
}

TEST_F(LoopTest, QuitStaysUntilALoopIsInstalled) {
    LoggingCall quitter("q", [](LoggingCall&) { quit_loop(); });
    post_call(quitter);
    EXPECT_EQ(run_turn(TurnWait::until_event), TurnResult::quit);
    LoggingCall later("l");
    post_call(later);
    EXPECT_EQ(run_turn(TurnWait::until_event), TurnResult::quit);
    EXPECT_EQ(g_log, "q");
    install_loop(nullptr);
    EXPECT_EQ(run_turn(TurnWait::until_event), TurnResult::progressed);
    EXPECT_EQ(g_log, "ql");
}

TEST_F(LoopTest, InstalledLoopGetsEveryCall) {
    LoopOperations recording;
    recording.self = &g_log;
    recording.watch = [](void*, DescriptorWatch& w) { g_log += w.active ? "watch+ " : "watch "; };
    recording.unwatch = [](void*, DescriptorWatch&) { g_log += "unwatch "; };
    recording.start = [](void*, Timer& t) {
        g_log += "start" + std::to_string(t.interval_ms) + " ";
    };
    recording.stop = [](void*, Timer&) { g_log += "stop "; };
    recording.post = [](void*, PostedCall&) { g_log += "post "; };
    recording.cancel = [](void*, PostedCall&) { g_log += "cancel "; };
    recording.turn = [](void* self, TurnWait) {
        EXPECT_EQ(self, &g_log);
        return TurnResult::progressed;
    };
    recording.quit = [](void*) { g_log += "quit "; };
    install_loop(&recording);
    DescriptorWatch watch;
    Timer timer;
    PostedCall call;
    watch_descriptor(watch);
    watch_descriptor(watch);
    unwatch_descriptor(watch);
    unwatch_descriptor(watch);
    start_timer(timer, 7);
    start_timer(timer, -1);
    stop_timer(timer);
    stop_timer(timer);
    post_call(call);
    post_call(call);
    cancel_call(call);
    cancel_call(call);
    quit_loop();
    EXPECT_EQ(run_turn(TurnWait::none), TurnResult::progressed);
    install_loop(nullptr);
    EXPECT_EQ(g_log, "watch watch+ unwatch start7 stop start1 stop post cancel quit ");
}

TEST(Clock, ManualClockStandsStillUntilMoved) {
    const std::int64_t before = real_monotonic_ms();
    {
        ManualClock clock;
        EXPECT_TRUE(clock_is_manual());
        const std::int64_t start = monotonic_ms();
        const std::int64_t wall = wall_seconds();
        clock.advance(2500);
        EXPECT_EQ(monotonic_ms(), start + 2500);
        EXPECT_GE(wall_seconds(), wall + 2);
        EXPECT_LE(wall_seconds(), wall + 3);
    }
    EXPECT_FALSE(clock_is_manual());
    EXPECT_GE(monotonic_ms(), before);
}

} // namespace
} // namespace pellux
