#include "tests/support/rounds.h"
#include "tests/support/scratch.h"
#include "tests/tools/driver/compiled_tree.h"
#include "tests/tools/driver/generated_design.h"

#include <random>

#include <csignal>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

namespace pellux {
namespace {

/// Runs the driver in `tree` and kills it at the begin or end of its n-th system call (0: never).
/// Answers how many of them there were.
int run_killed_at(const fs::path& tree, const Words& words, int kill_at) {
    const test::ArgumentVector vector(k_brix, words);
    const pid_t process = ::fork();
    if (process == 0) {
        const int nothing = ::open("/dev/null", O_RDWR);
        ::dup2(nothing, STDOUT_FILENO);
        ::dup2(nothing, STDERR_FILENO);
        if (::chdir(tree.c_str()) == 0 && ::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) == 0)
            ::execv(k_brix.c_str(), const_cast<char* const*>(vector.pointers.data()));
        ::_exit(127);
    }
    int calls = 0;
    int status = 0;
    EXPECT_EQ(::waitpid(process, &status, 0), process);
    EXPECT_TRUE(WIFSTOPPED(status)) << "the driver can't be traced";
    ::ptrace(PTRACE_SETOPTIONS, process, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
    for (int signal = 0; WIFSTOPPED(status);) {
        const bool is_call = WSTOPSIG(status) == (SIGTRAP | 0x80);
        signal = is_call || WSTOPSIG(status) == SIGTRAP ? 0 : WSTOPSIG(status);
        if (is_call && ++calls == kill_at)
            ::kill(process, SIGKILL);
        ::ptrace(PTRACE_SYSCALL, process, nullptr, signal);
        ::waitpid(process, &status, 0);
    }
    return calls;
}

/// Waits for what the killed ones started.
void reap() {
    while (::waitpid(-1, nullptr, 0) > 0)
        continue;
}

std::string leftovers(const fs::path& tree) {
    std::string all;
    for (const auto& entry : fs::recursive_directory_iterator(tree)) {
        const std::string name = entry.path().filename();
        if (name.starts_with("run-") || name.ends_with(".tmp") || name.ends_with("-journal"))
            all += entry.path().lexically_relative(tree).string() + "\n";
    }
    return all;
}

TEST(KilledRun, NextOneMakesWhatACompilationOfEverythingMakes) {
    // GHDL outlives the driver for a moment, as a child of this program.
    ASSERT_EQ(::prctl(PR_SET_CHILD_SUBREAPER, 1), 0);
    const test::Rounds rounds(8);
    constexpr int k_edits = 5;
    for (int round = 0; round < rounds.count;) {
        const unsigned seed = rounds.seed + static_cast<unsigned>(round);
        std::mt19937 random(seed);
        test::GeneratedDesign design(seed);
        const Scratch scratch;
        const fs::path tree = scratch.path("tree");
        fs::create_directory(tree);
        std::string told = "seed " + std::to_string(seed) + ":";
        for (int i = 0; i < k_edits && round < rounds.count; ++i, ++round) {
            design.write(tree);
            std::vector<std::string> words = design.words();
            words.insert(words.begin(), random() % 2 == 0 ? "-m" : "-yt");
            fs::remove_all(scratch.path("copy"));
            fs::copy(tree, scratch.path("copy"), fs::copy_options::recursive);
            const int calls = run_killed_at(scratch.path("copy"), words, 0);
            // Most of what can be half done is done at the end.
            const int early = random() % 2 == 0 ? calls * 3 / 4 : 0;
            const int moment =
                1 + early + static_cast<int>(random() % static_cast<unsigned>(calls - early));
            run_killed_at(tree, words, moment);
            const bool alone = random() % 2 == 0;
            if (alone)
                reap();
            told += " killed at call " + std::to_string(moment) + " of " + std::to_string(calls);
            const Outcome next = compile(tree, design.words(), true);
            reap();
            const Outcome whole = compile_afresh(scratch.path("fresh"), design);
            ASSERT_EQ(difference(next, whole), "") << told;
            if (alone) {
                ASSERT_EQ(leftovers(tree), "") << told;
            }
            ASSERT_EQ(compile(tree, design.words(), true).compiled,
                      compile(scratch.path("fresh"), design.words(), true).compiled)
                << told;
            told += "; " + design.edit() + ";";
        }
    }
    ::prctl(PR_SET_CHILD_SUBREAPER, 0);
}

} // namespace
} // namespace pellux
