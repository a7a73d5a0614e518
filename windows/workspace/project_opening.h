#pragma once

#include "core/project/records.h"

#include <span>
#include <string_view>

namespace pellux {

// Every way in which a project is opened. One that is open comes to the front instead.

/// Reads a project file of the current directory and opens its window. False after the user was
/// told why not.
bool open_project_here(std::string_view name);
/// The same for the file of a directory.
bool open_project_in(std::string_view directory, std::string_view name);
/// Opens a project with what a copy of its file says; the file may be missing.
bool open_left_project(std::string_view path, const String& copy);
/// Opens the project files among absolute paths, and answers the other paths.
Vector<String> open_projects_among(std::span<const String> paths);
/// Asks which project to open, and opens it.
void choose_project();
/// Opens the window of a project that has its directory, and takes it into the list. False after
/// the user was told.
bool add_project(Owned<Project> project);

} // namespace pellux
