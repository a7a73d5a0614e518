#pragma once

#include "windows/toolkit/event.h"

namespace pellux {

// The editors of a project's files.

/// Makes editors known, and ties them to the projects. `take_key` has the keys that they have no
/// use for.
void start_editors(bool (*take_key)(Window project, const CharacterEvent& key));
/// Copies are written from now on, where the project wants them.
void update_auto_save(Window window);
/// Writes the copies of the project and its texts when that timer is theirs; false when it is
/// another's.
bool on_auto_save_timer(Window window, TimerId timer);
/// Opens an editor for each selected file.
void open_selected_files(Window window);

} // namespace pellux
