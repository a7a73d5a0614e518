#include "tests/core/launch/spawner_fixture.h"

#include "core/os/files.h"

#include <memory>

namespace pellux {
namespace {

TEST_F(SpawnerTest, OneChildAtATimeAndItsStatusIsKept) {
    Spawner spawner(Log::take, &log_);
    EXPECT_EQ(spawner.status(), -1);
    EXPECT_EQ(spawner.wait(), -1);
    ASSERT_TRUE(launch(spawner, {"say", "77", "line 1\nline 2\n"}));
    EXPECT_FALSE(launch(spawner, {"say", "0", "refused"}));
    EXPECT_EQ(spawner.status(), 0);
    EXPECT_EQ(spawner.wait(), 77);
    EXPECT_EQ(log_.text, "line 1\nline 2\n");
    EXPECT_EQ(log_.ends, 1);
    EXPECT_EQ(spawner.wait(), 77);
}

TEST_F(SpawnerTest, ThePlainCallbackIsCalledToo) {
    static std::string s_told;
    s_told.clear();
    Spawner spawner([](const char* text, int done, int status) {
        s_told += done != 0 ? "end " + std::to_string(status) : text;
    });
    ASSERT_TRUE(launch(spawner, {"say", "3", "text "}));
    EXPECT_EQ(spawner.wait(), 3);
    EXPECT_EQ(s_told, "text end 3");
}

TEST_F(SpawnerTest, ArgumentsArriveAsTheyAreOnTheCommandLineOrInTheResponseFile) {
    Spawner spawner(Log::take, &log_);
    ASSERT_TRUE(launch(spawner, {"arguments", "a b", "", "\"q\\\"", "\xFF"}));
    EXPECT_EQ(spawner.wait(), 0);
    EXPECT_EQ(log_.text, "[arguments][a b][][\"q\\\"][\xFF]");
    EXPECT_FALSE(file_exists("brix.rsp"));
    log_ = {};
    const std::string longer(200, 'x');
    ASSERT_TRUE(launch(spawner, {"arguments", longer, "a b"}));
    EXPECT_EQ(spawner.wait(), 0);
    EXPECT_EQ(log_.text, "[@brix.rsp]arguments " + longer + " \"a b\"\n");
}

TEST_F(SpawnerTest, AFailingResponseFileOrProgramFailsTheLaunch) {
    ASSERT_FALSE(failed(make_directory("brix.rsp")));
    const std::string longer(200, 'x');
    Spawner spawner(Log::take, &log_);
    EXPECT_FALSE(launch(spawner, {"arguments", longer}));
    const char* const argv[] = {"none", nullptr};
    EXPECT_FALSE(spawner.launch("/no/such/program", argv));
    EXPECT_FALSE(spawner.launch("./brix.rsp", argv));
    EXPECT_FALSE(Spawner::run("/no/such/program", argv));
    EXPECT_FALSE(spawner.running());
    EXPECT_EQ(log_.ends, 0);
    ASSERT_TRUE(launch(spawner, {"say", "0", ""}));
    EXPECT_EQ(spawner.wait(), 0);
}

TEST_F(SpawnerTest, AChildThatNeverConnectsFailsAfterTwentySeconds) {
    ManualClock clock;
    Spawner spawner(Log::take, &log_);
    ASSERT_TRUE(launch(spawner, {"mute"}));
    clock.advance(19999);
    run_turn(TurnWait::none);
    EXPECT_TRUE(spawner.running());
    clock.advance(1);
    run_turn(TurnWait::none);
    EXPECT_FALSE(spawner.running());
    EXPECT_EQ(log_.status, 1);
}

TEST_F(SpawnerTest, TheWatchdogIsQuietWhileTheChildLives) {
    ManualClock clock;
    Spawner spawner(Log::take, &log_);
    ASSERT_TRUE(launch(spawner, {"ignore_close"}));
    hear(spawner);
    for (int i = 0; i < 10; ++i) {
        clock.advance(5000);
        run_turn(TurnWait::none);
    }
    EXPECT_TRUE(spawner.running());
    spawner.halt();
    clock.advance(1999);
    run_turn(TurnWait::none);
    EXPECT_TRUE(process_exists(spawner.child_window()));
    clock.advance(1);
    EXPECT_EQ(spawner.wait(), 1);
    EXPECT_EQ(log_.text, "ready\n");
}

TEST_F(SpawnerTest, HaltLetsTheChildCloseByItself) {
    const ManualClock clock;
    Spawner spawner(Log::take, &log_);
    spawner.halt();
    ASSERT_TRUE(launch(spawner, {"obey_close"}));
    hear(spawner);
    spawner.halt();
    EXPECT_EQ(spawner.wait(), 9);
    EXPECT_EQ(log_.ends, 1);
}

TEST_F(SpawnerTest, HaltEndsAChildThatWasNeverHeardOf) {
    const ManualClock clock;
    Spawner spawner(Log::take, &log_);
    ASSERT_TRUE(launch(spawner, {"mute"}));
    spawner.halt();
    EXPECT_EQ(spawner.wait(), 1);
}

TEST_F(SpawnerTest, SpawnersHaveNumbersOfTheirOwnAndDoNotMixTexts) {
    Log other;
    Spawner first(Log::take, &log_);
    Spawner second(Log::take, &other);
    EXPECT_NE(first.handle(), second.handle());
    ASSERT_TRUE(launch(first, {"flood", "1000"}));
    ASSERT_TRUE(launch(second, {"say", "2", "second"}));
    EXPECT_EQ(second.wait(), 2);
    EXPECT_EQ(first.wait(), 0);
    EXPECT_EQ(other.text, "second");
    EXPECT_EQ(log_.text.size(), 80000U);
}

TEST_F(SpawnerTest, QuittingTheLoopEndsTheWait) {
    log_.quit_at_text = true;
    Spawner spawner(Log::take, &log_);
    ASSERT_TRUE(launch(spawner, {"ignore_close"}));
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
    for (const char* role : {"flood", "die", "complete_and_go_on"}) {
        holder.calls = 0;
        holder.spawner = std::make_unique<Spawner>(end_it, &holder);
        ASSERT_TRUE(launch(*holder.spawner, {role, "50"}));
        while (holder.spawner != nullptr)
            run_turn(TurnWait::until_event);
        run_turn(TurnWait::none);
        EXPECT_EQ(holder.calls, 1) << role;
    }
}

} // namespace
} // namespace pellux
