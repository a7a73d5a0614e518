#pragma once

#include "core/common/callback.h"
#include "core/launch/spawner.h"
#include "core/os/clock.h"
#include "tests/support/arguments.h"
#include "tests/support/frames.h"
#include "tests/support/running.h"
#include "tests/support/scratch.h"

#include <gtest/gtest.h>

#include <string>

#include <fcntl.h>
#include <sys/stat.h>

namespace pellux {

inline const std::string k_child = std::string(PELLUX_BINARY_DIR) + "/tests/programs/channel_child";

// Steps of the child with bytes of any kind.

inline std::string hex(std::string_view text) {
    std::string digits;
    for (const char c : text)
        for (const int shift : {4, 0})
            digits += "0123456789abcdef"[static_cast<unsigned char>(c) >> shift & 15];
    return digits;
}

inline std::string sends(const std::string& bytes) {
    return "send=" + hex(bytes);
}

inline std::string says(const std::string& text) {
    return "poke=" + hex("0" + text);
}

/// What a spawner told, and what is to be done at its words.
struct Log {
    std::string text;
    int ends = 0;
    int status = -2;
    bool quit_at_text = false;

    static void take(void* context, const char* text, int done, int status) {
        Log& log = from_context<Log>(context);
        if (done != 0) {
            EXPECT_EQ(text, nullptr);
            ++log.ends;
            log.status = status;
            return;
        }
        EXPECT_EQ(status, 0);
        log.text += text;
        if (log.quit_at_text)
            quit_loop();
    }
};

/// A directory of its own to work and to keep the channels in.
class SpawnerTest : public testing::Test {
protected:
    /// Ends the grace of all children that were given up.
    ~SpawnerTest() override {
        install_loop(nullptr);
        ManualClock clock;
        clock.advance(1'000'000);
        EXPECT_TRUE(turn_until_no_child());
    }

    static bool launch(Spawner& spawner, const Words& steps) {
        const test::ArgumentVector vector(k_child, steps);
        return static_cast<bool>(spawner.launch(k_child.c_str(), vector.pointers.data()));
    }
    /// With steps that blanks part.
    static bool launch(Spawner& spawner, const std::string& steps) {
        return launch(spawner, test::words_of(steps));
    }
    /// Turns the loop until the child was heard of.
    static void hear(const Spawner& spawner) {
        while (spawner.child_window() == 0 && spawner.running())
            run_turn(TurnWait::until_event);
    }

    Scratch directory_;
    test::ScopedVariable runtime_{"XDG_RUNTIME_DIR", directory_.path().c_str()};
    Log log_;
};

/// A place where two programs wait for each other.
struct Meeting {
    const char* name;

    explicit Meeting(const char* fifo) : name(fifo) { EXPECT_EQ(::mkfifo(fifo, 0600), 0); }
    /// Turns the loop until the other one is there.
    [[nodiscard]] bool meet() const {
        return turn_until([this] {
            const OwnedHandle end{
                static_cast<SystemHandle>(::open(name, O_WRONLY | O_NONBLOCK | O_CLOEXEC))};
            return static_cast<bool>(end);
        });
    }
};

} // namespace pellux
