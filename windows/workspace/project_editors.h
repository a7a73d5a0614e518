#pragma once

#include "windows/toolkit/event.h"

namespace pellux {

// The editors of a project's files.

/// Makes editors known, and ties them to the projects. `take_key` has the keys that they have no
/// use for.
void start_editors(bool (*take_key)(Window project, const CharacterEvent& key));
/// Writes the copies of its texts when that timer is theirs; false when it is another's.
bool on_auto_save_timer(Window window, TimerId timer);
/// Opens an editor for each selected file.
void open_selected_files(Window window);

} // namespace pellux
