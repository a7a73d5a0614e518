#pragma once

#include "core/project/records.h"
#include "windows/toolkit/event.h"

#include <string_view>

namespace pellux {

/// What editors want of the projects that their texts belong to. `project` is the window of one.
/// Where nobody fills something in, it is as if the project were gone.
struct EditorHooks {
    /// Null for a project that is gone.
    const Source_options* (*options)(Window project) = [](Window) -> const Source_options* {
        return nullptr;
    };
    /// Can its files be compiled, and does no compile run?
    bool (*can_compile)(Window project) = [](Window) { return false; };
    /// After all of its changed texts were saved.
    void (*compile)(Window project) = [](Window) {};
    /// The same of one file alone.
    void (*compile_file)(Window project, std::string_view path) = [](Window, std::string_view) {};
    /// A key that the editor has no use for; false when the project has none either.
    bool (*take_key)(Window project, const CharacterEvent& key) =
        [](Window, const CharacterEvent&) { return false; };
    /// It has an editor more.
    void (*opened)(Window project) = [](Window) {};
    /// The text of a file was saved as another one.
    void (*rename)(Window project, std::string_view from,
                   std::string_view to) = [](Window, std::string_view, std::string_view) {};
    /// Where the window of a file stood; empty: not known. In the task window.
    Rect (*place)(Window project, std::string_view path) = [](Window, std::string_view) {
        return Rect{};
    };
    void (*keep_place)(Window project, std::string_view path,
                       const Rect& place) = [](Window, std::string_view, const Rect&) {};
    /// Makes its directory the current one.
    void (*enter)(Window project) = [](Window) {};
};

/// One for the process.
[[nodiscard]] inline EditorHooks& editor_hooks() {
    static EditorHooks hooks;
    return hooks;
}

} // namespace pellux
