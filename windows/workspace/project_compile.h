#pragma once

#include "windows/toolkit/event.h"

namespace pellux {

/// Makes the resources of the compiler's output known.
void register_project_compile();
/// Starts the compiler for all files of a project or the selected ones, and shows what it says in a
/// window beside the project's. One at a time for a project.
void compile_project(Window project, bool all);
/// The project's window goes: its compiler is stopped and the output goes too.
void end_project_compile(Window project);

} // namespace pellux
