#pragma once

#include "windows/app/shell.h"

namespace pellux {

/// Puts the task window into its place, goes to the directory to start in and opens the projects
/// there: the one that the command line names, else all of the directory, else a new one.
void open_starting_projects(Shell& shell);

} // namespace pellux
