#pragma once

#include "core/common/containers.h"
#include "windows/toolkit/event.h"

#include <span>

namespace pellux {

// The commands about the files of a project, by the project's window. Each shows what it changed
// and tells the user what it refused.

void ask_for_vhdl_files(Window window);
void add_all_vhdl_files(Window window);
void ask_for_pla_file(Window window);
/// Files, and all VHDL files of directories.
void add_dropped_files(Window window, std::span<const String> paths);
void remove_selected_files(Window window);
void cut_selected_files(Window window);
/// False after the user was told; the clipboard is then as it was.
bool copy_selected_files(Window window);
void paste_files(Window window);
void select_all_files(Window window);
void move_selected_files_up(Window window);
void move_selected_files_down(Window window);
/// The entry that the keyboard stands on, or the only selected one, becomes the top design; the one
/// that is it already is so no more.
void toggle_top_design(Window window);

} // namespace pellux
