#pragma once

#include "windows/app/placement.h"

namespace pellux {

/// Puts the task window where it stood at the end of the last run. `remembered` is then that place.
void restore_task_place(Placement& remembered);
/// Takes note of where the task window stands now.
void remember_task_place(Placement& remembered);
/// Writes the settings, with the current directory; nothing where that can't be read.
void write_task_settings(const Placement& remembered);

} // namespace pellux
