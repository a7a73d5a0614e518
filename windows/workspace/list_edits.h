#pragma once

#include "core/project/source_history.h"
#include "windows/toolkit/event.h"

namespace pellux {

// The commands that change a project's list as it is, by the project's window. Each shows what it
// changed.

void remove_selected_files(Window window);
void select_all_files(Window window);
void move_selected_files_up(Window window);
void move_selected_files_down(Window window);
/// The only selected entry becomes the top design; the one that is it already is so no more.
void toggle_top_design(Window window);
/// Takes the last change of the list or the top design back, or makes it again.
void undo_list_change(Window window);
void redo_list_change(Window window);

/// "&Undo removing 3 files": the title of the command, and of its counterpart.
[[nodiscard]] String undo_title(const SourceHistory& history, const Project& project);
[[nodiscard]] String redo_title(const SourceHistory& history, const Project& project);

/// To be called after every change, so that it can be taken back; see `note_change`.
void note_list_change(Window window, SourceOrder before, Vector<Owned<VHDL_source>> removed = {});

} // namespace pellux
