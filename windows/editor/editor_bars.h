#pragma once

#include "windows/editor/editor_commands.h"
#include "windows/toolkit/event.h"

#include <string_view>

namespace pellux {

// What stands around the text of an editor: its toolbar above, its status bar below.

/// Makes both; the window has its size.
void create_editor_bars(Window window);
/// Fits them to the window, and answers the room that they leave; logical pixels.
[[nodiscard]] Rect lay_out_editor_bars(Window window);

/// What can be done now, where that changes.
struct EditorState {
    bool can_undo = false;
    bool can_redo = false;
    bool is_writable = true;
    bool has_selection = false;
    bool can_compile = false;

    bool operator==(const EditorState&) const = default;
};
/// Enables the menus' items and the toolbar's buttons.
void show_editor_state(Window window, const EditorState& state);

struct EditorStatus {
    std::int64_t line = 0; ///< from 1
    std::int64_t lines = 1;
    std::int64_t column = 0; ///< from 1, in characters
    int undos = 0;
    std::string_view state;
    std::string_view encoding;
    std::string_view line_end;
    std::string_view matches; ///< of what is searched for; empty: nothing is
    std::string_view instead; ///< of the line: a key that waits, or words
};
void show_editor_status(Window window, const EditorStatus& status);

/// The command of a toolbar's button that an event tells of; none for all others.
[[nodiscard]] EditorCommand command_of_notice(const NoticeEvent& notice);

} // namespace pellux
