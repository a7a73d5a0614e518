#pragma once

#include "core/project/source_list.h"
#include "core/project/source_walk.h"
#include "windows/toolkit/event.h"

#include <span>

namespace pellux {

// The commands that bring files into a project or carry them to another, by the project's window.
// Each shows what it changed and tells the user what it refused.

void ask_for_vhdl_files(Window window);
void add_all_vhdl_files(Window window);
void ask_for_pla_file(Window window);
/// Files, and all VHDL files of directories.
void add_dropped_files(Window window, std::span<const String> paths);
/// What a walk finds, in the order in which the files use one another. Few are in the list when it
/// returns; while it takes longer the status line says so, and the user goes on with the window.
void add_found_files(Window window, SourceWalk walk);
void cut_selected_files(Window window);
/// False after the user was told; the clipboard is then as it was.
bool copy_selected_files(Window window);
void paste_files(Window window);

/// Says why a file is not taken into the list; nothing where it is in it.
void tell_refusal(AddStatus status, const String& path);

} // namespace pellux
