#pragma once

#include "core/os/clock.h"
#include "core/os/loop.h"
#include "core/os/process.h"
#include "tests/support/arguments.h"
#include "tests/support/temporary_directory.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

#include <sys/wait.h>

namespace pellux {

/// Turns the loop until `done` says so; false when that takes longer than anything here may.
template <typename Done>
bool turn_until(Done done) {
    const std::int64_t deadline = real_monotonic_ms() + 20'000;
    while (!done()) {
        if (real_monotonic_ms() > deadline)
            return false;
        run_turn(TurnWait::none);
    }
    return true;
}

inline void turn_until_idle() {
    while (run_turn(TurnWait::none) != TurnResult::idle)
        continue;
}

/// Is there a child, though it may have ended?
inline bool has_children() {
    siginfo_t info{};
    return ::waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) == 0;
}

/// Turns the loop until every child of this program is gone and told of.
inline bool turn_until_no_child() {
    const bool alone = turn_until([] { return !has_children(); });
    turn_until_idle();
    return alone;
}

struct Pipe {
    OwnedHandle read_end;
    OwnedHandle write_end;

    Pipe() { EXPECT_FALSE(failed(make_pipe(read_end, write_end))); }
    /// What comes out of it up to its end or, given `last`, up to that character.
    [[nodiscard]] std::string read(char last = '\0') const {
        std::string text;
        std::array<std::byte, 1> byte;
        std::size_t got = 0;
        bool would_wait = false;
        while (!failed(read_handle(read_end.get(), byte, got, would_wait)) && got == 1 &&
               static_cast<char>(byte[0]) != last)
            text += static_cast<char>(byte[0]);
        return text;
    }
};

inline const std::string k_os_child = std::string(PELLUX_BINARY_DIR) + "/tests/programs/os_child";

/// The request and the words of one child with a role.
struct ChildRequest : ProcessRequest {
    test::ArgumentVector vector;

    explicit ChildRequest(const Words& role) : vector(k_os_child, role) {
        program = k_os_child.c_str();
        arguments = vector.pointers.data();
    }
};

/// A child whose standard output is a pipe.
struct Child : Process {
    int ends = 0; ///< told
    ProcessEnd end;
    Pipe pipe;

    explicit Child(const Words& role) {
        ChildRequest request(role);
        request.output = pipe.write_end.get();
        context = this;
        ended = [](void* self, ProcessEnd how) {
            ++static_cast<Child*>(self)->ends;
            static_cast<Child*>(self)->end = how;
        };
        EXPECT_FALSE(failed(start_process(*this, request)));
        pipe.write_end.reset();
    }
};

} // namespace pellux
