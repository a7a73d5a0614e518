#pragma once

#include "windows/toolkit/event.h"

namespace pellux {

// The commands of a project's window that search its files, after a question what for.

/// All files of its list.
void search_project_files(Window project);
/// Those that are selected in it.
void search_selected_files(Window project);
/// All VHDL files of the project's directory.
void search_vhdl_files(Window project);

} // namespace pellux
