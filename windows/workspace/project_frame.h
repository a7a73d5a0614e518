#pragma once

#include "windows/workspace/open_projects.h"

namespace pellux {

// The window of a project as a whole: where it stands, its title, its mark of unsaved changes.

/// Makes the resources of the window known.
void register_project_window();
/// Makes the window where the project has its place; none when that fails.
[[nodiscard]] Window create_project_window(const Project& project);
/// Shows what a command changed: status line, mark of unsaved changes, what can be done now.
void show_project_change(Window window);
/// What a title calls the project: its file, with the directory where another open project has the
/// same name.
[[nodiscard]] String project_label(const Project& project);
/// Puts these into the titles of all projects; to be called when one has come, gone or got a name.
void show_project_names();
/// Takes the window's place into the project, if its user has moved it: a visit alone changes
/// nothing.
void store_place(OpenProject& open);

} // namespace pellux
