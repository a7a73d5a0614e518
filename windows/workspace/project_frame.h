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
/// Puts the project's name into the title.
void show_project_name(Window window, const Project& project);
/// Takes the window's place into the project, if its user has moved it: a visit alone changes
/// nothing.
void store_place(OpenProject& open);

} // namespace pellux
