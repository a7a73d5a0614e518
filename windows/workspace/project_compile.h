#pragma once

#include "windows/toolkit/event.h"

namespace pellux {

/// Starts the compiler for all files of a project or the selected ones, and shows what it says in a
/// window beside the project's. One at a time for a project; it goes with that window.
void compile_project(Window project, bool all);

} // namespace pellux
