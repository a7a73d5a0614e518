#pragma once

#include "core/os/clock.h"
#include "core/os/loop.h"
#include "core/os/process.h"
#include "tests/core/os/temporary_directory.h"

#include <array>
#include <initializer_list>
#include <span>
#include <string>
#include <vector>

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

inline const std::string k_os_child = std::string(PELLUX_BINARY_DIR) + "/tests/programs/os_child";

/// The request and the words of one child with a role.
struct ChildRequest {
    std::vector<std::string> words;
    std::vector<const char*> pointers;
    ProcessRequest request;

    explicit ChildRequest(std::initializer_list<std::string> role) : words{k_os_child} {
        words.insert(words.end(), role);
        for (const std::string& word : words)
            pointers.push_back(word.c_str());
        pointers.push_back(nullptr);
        request.program = k_os_child.c_str();
        request.arguments = pointers.data();
    }
    ChildRequest(const ChildRequest&) = delete;
    ChildRequest& operator=(const ChildRequest&) = delete;
};

/// What comes out of a pipe up to its end or, given `last`, up to that character.
inline std::string read_text(const OwnedHandle& from, char last = '\0') {
    std::string text;
    std::array<std::byte, 1> byte;
    std::size_t got = 0;
    bool would_wait = false;
    while (!failed(read_handle(from.get(), byte, got, would_wait)) && got == 1) {
        if (static_cast<char>(byte[0]) == last)
            break;
        text += static_cast<char>(byte[0]);
    }
    return text;
}

} // namespace pellux
