#pragma once

#include <gtest/gtest.h>

#include <csignal>

#include <sys/wait.h>
#include <unistd.h>

namespace pellux::test {

/// Runs `act` in a copy of this program. Answers its exit status, which is what `act` answers, or
/// 1000 and the number of the signal that ended it.
template <typename Act>
int run_forked(Act act) {
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(static_cast<int>(act()));
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    return WIFSIGNALED(status) ? 1000 + WTERMSIG(status) : WEXITSTATUS(status);
}

/// Runs `act` in a copy of this program that is killed when it is done; did `act` succeed?
template <typename Act>
bool run_and_kill(Act act) {
    const auto killed = [&act] { return act() && ::raise(SIGKILL) == 0; };
    return run_forked(killed) == 1000 + SIGKILL;
}

} // namespace pellux::test
