#pragma once

#include "core/launch/message_line.h"
#include "core/project/records.h"
#include "windows/toolkit/event.h"

#include <cstdint>
#include <string_view>

namespace pellux {

/// What compile windows want of their project, by its window. Where nobody fills something in, it
/// is as if the project were gone.
struct CompileHooks {
    /// Null for a project that is gone.
    Project* (*project)(Window project) = [](Window) -> Project* { return nullptr; };
    /// A run has begun or ended, or its window has gone.
    void (*changed)(Window project) = [](Window) {};
    /// A new run begins: what is known of the messages before is of no more use.
    void (*begin)(Window project) = [](Window) {};
    void (*note_message)(Window project, std::int64_t number, const MessageLine& message) =
        [](Window, std::int64_t, const MessageLine&) {};
    /// Shows the place of a message in the editor of its file; false after the user was told that
    /// it can't be.
    bool (*locate)(Window project, std::int64_t number, const MessageLine& message) =
        [](Window, std::int64_t, const MessageLine&) { return false; };
    /// Runs a command of the project; false when it has none of that tag.
    bool (*run_command)(Window project, int tag) = [](Window, int) { return false; };
    bool (*can_run)(Window project, int tag) = [](Window, int) { return false; };
    /// A key that the window has no use for; false when the project has none either.
    bool (*take_key)(Window project, const CharacterEvent& key) =
        [](Window, const CharacterEvent&) { return false; };
};

/// One for the process.
[[nodiscard]] inline CompileHooks& compile_hooks() {
    static CompileHooks hooks;
    return hooks;
}

} // namespace pellux
