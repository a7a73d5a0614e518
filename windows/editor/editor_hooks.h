#pragma once

#include "core/project/records.h"
#include "windows/toolkit/event.h"

#include <string_view>

namespace pellux {

/// What editors want of the projects that their texts belong to. `project` is the window of one.
struct EditorHooks {
    /// Null for a project that is gone.
    const Source_options* (*options)(Window project) = nullptr;
    /// Can its files be compiled, and does no compile run?
    bool (*can_compile)(Window project) = nullptr;
    void (*compile)(Window project) = nullptr;
    /// A key that the editor has no use for; false when the project has none either.
    bool (*take_key)(Window project, const CharacterEvent& key) = nullptr;
    /// The text of a file was saved as another one.
    void (*rename)(Window project, std::string_view from, std::string_view to) = nullptr;
    /// Where the window of a file stood; empty: not known. In the task window.
    Rect (*place)(Window project, std::string_view path) = nullptr;
    void (*keep_place)(Window project, std::string_view path, const Rect& place) = nullptr;
    /// Makes its directory the current one.
    void (*enter)(Window project) = nullptr;
};

/// One for the process.
[[nodiscard]] inline EditorHooks& editor_hooks() {
    static EditorHooks hooks;
    return hooks;
}

} // namespace pellux
