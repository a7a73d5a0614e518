#include "core/launch/response_file.h"

#include "tests/core/launch/spawner_fixture.h"
#include "tests/support/file_faults.h"

namespace pellux {
namespace {

using ResponseFile = SpawnerTest;

/// The name that a response file of another program would get now; empty when there is none.
std::string next_name(File& held) {
    String name;
    return failed(put_response_file("text", held, name)) ? "" : std::string(name.c_str());
}

std::string next_name() {
    File held;
    return next_name(held);
}

TEST_F(ResponseFile, NameThatIsHeldIsPassedOverAndALeftoverReplaced) {
    directory_.write("brix.rsp", "a longer leftover");
    std::vector<File> held(k_response_files_max);
    for (int i = 0; i < k_response_files_max; ++i)
        EXPECT_EQ(next_name(held[static_cast<std::size_t>(i)]),
                  i == 0 ? "brix.rsp" : "brix" + std::to_string(i + 1) + ".rsp");
    EXPECT_EQ(directory_.read("brix.rsp"), "text");
    EXPECT_EQ(next_name(), "");
    held[2] = {};
    EXPECT_EQ(next_name(), "brix3.rsp");
    held[0] = {};
    EXPECT_EQ(next_name(), "brix.rsp");
    EXPECT_EQ(directory_.names().size(), held.size());
}

TEST_F(ResponseFile, FailureLeavesTheOldFileAndTakesNoName) {
    int failures = 0;
    for (int countdown = 0; countdown <= 0;) {
        directory_.write("brix.rsp", "old");
        countdown = ++failures;
        std::string name;
        {
            const test::FileFaults faults([&](FileOperation operation, std::string_view) {
                const bool fails = operation != FileOperation::remove && --countdown == 0;
                return fails ? SystemError{EIO} : SystemError::none;
            });
            name = next_name();
        }
        EXPECT_EQ(directory_.read("brix.rsp"), name.empty() ? "old" : "text") << failures;
        EXPECT_EQ(directory_.names(), std::set<std::string>{"brix.rsp"});
    }
    EXPECT_GT(failures, 10);
    std::filesystem::remove("brix.rsp");
    std::filesystem::create_symlink("elsewhere", "brix.rsp");
    EXPECT_EQ(next_name(), "");
    EXPECT_EQ(directory_.names(), std::set<std::string>{"brix.rsp"});
}

TEST_F(ResponseFile, FileThatTookTheNameAtTheLastMomentIsNotReplaced) {
    directory_.write("brix.rsp", "old");
    directory_.write("rival", "rival");
    File rival;
    ASSERT_FALSE(failed(open_file(rival, "rival", OpenMode::update)));
    ASSERT_FALSE(failed(lock_file(rival, FileLock::exclusive)));
    const test::FileFaults faults([locks = 0](FileOperation operation, std::string_view) mutable {
        // The first lock is that of the new file itself, the second one the old file's.
        if (operation == FileOperation::lock && ++locks == 2)
            std::filesystem::rename("rival", "brix.rsp");
        return SystemError::none;
    });
    EXPECT_EQ(next_name(), "brix2.rsp");
    EXPECT_EQ(directory_.read("brix.rsp"), "rival");
}

TEST_F(ResponseFile, IsHeldUntilTheFirstConnectionOrTheEndOfTheLaunch) {
    ManualClock clock;
    const Meeting go("go");
    const std::string pad = "pad=" + std::string(150, '.');
    {
        Spawner spawner(Log::take, &log_);
        ASSERT_TRUE(launch(spawner, pad + " meet=go hello sync closed"));
        EXPECT_EQ(next_name(), "brix2.rsp");
        ASSERT_TRUE(go.meet());
        EXPECT_TRUE(turn_until([] { return next_name() == "brix.rsp"; }));
        EXPECT_TRUE(spawner.running());
    }
    for (const bool halts : {true, false}) {
        auto spawner = std::make_unique<Spawner>(Log::take, &log_);
        ASSERT_TRUE(launch(*spawner, pad + " stay"));
        EXPECT_EQ(next_name(), "brix2.rsp");
        if (halts) {
            spawner->halt();
            EXPECT_EQ(spawner->wait(), 1);
        } else {
            spawner.reset();
        }
        EXPECT_EQ(next_name(), "brix.rsp");
        clock.advance(2000);
        EXPECT_TRUE(turn_until_no_child());
    }
    const test::ArgumentVector missing("/no/such/program", {pad});
    Spawner spawner(Log::take, &log_);
    EXPECT_FALSE(spawner.launch("/no/such/program", missing.pointers.data()));
    EXPECT_FALSE(Spawner::run("/no/such/program", missing.pointers.data()));
    EXPECT_EQ(next_name(), "brix.rsp");
}

TEST_F(ResponseFile, ProgramWithoutAChannelKeepsItsOwnToItsEnd) {
    const Meeting first("first"), second("second");
    for (const Meeting* meeting : {&first, &second}) {
        const test::ArgumentVector vector(
            k_child, {"pad=" + std::string(150, '.'), std::string("meet=") + meeting->name});
        ASSERT_TRUE(Spawner::run(k_child.c_str(), vector.pointers.data()));
    }
    EXPECT_EQ(next_name(), "brix3.rsp");
    ASSERT_TRUE(first.meet() && turn_until([] { return next_name() == "brix.rsp"; }));
    ASSERT_TRUE(second.meet() && turn_until_no_child());
    File held;
    EXPECT_EQ(next_name(held), "brix.rsp");
    EXPECT_EQ(next_name(), "brix2.rsp");
}

} // namespace
} // namespace pellux
