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
/// F4 and Shift+F4 go to the next result of the last search and to the one before; false when it is
/// another key, or there is no search.
bool run_search_key(Window project, const CharacterEvent& key);

} // namespace pellux
