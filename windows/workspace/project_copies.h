#pragma once

#include "windows/editor/auto_save.h"
#include "windows/editor/differences_window.h"
#include "windows/workspace/open_projects.h"

#include <string_view>

namespace pellux {

// Copies of what is not saved of the projects themselves: their lists and options.

/// Tells other programs which file is open here, after a project has come or got another name, and
/// tells the user who else has it open.
void note_project_file(Window window);
/// Does the user want a file to be written that another program has open?
[[nodiscard]] bool may_write_beside_other(Window window);

/// Writes the copy of a project that is not saved.
void write_project_copy(OpenProject& open);
/// It was written: the copy, if there is one, is older.
void note_saved_project(OpenProject& open);
/// The project is finished with.
void finish_project(OpenProject& open);
/// Copies of all that is not saved, projects and texts, at once: for a program that must end now.
void save_all_work();

/// Puts what a copy says into the place of an open project's list and options. False after the user
/// was told that it can't be read.
bool restore_project(Window window, std::string_view copy);
/// Does it with what the user chose when the project was opened, or shows how it differs.
void use_chosen_copy(Window window, const ChosenCopy& choice);
/// Shows what is otherwise in the copy of a project.
void show_project_differences(const DifferencesSubject& subject);

} // namespace pellux
