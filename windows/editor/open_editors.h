#pragma once

#include "windows/editor/editor_hooks.h"
#include "windows/editor/editor_window.h"

#include <string_view>

namespace pellux {

// The program's list of editors. A text that has one is never opened in a second.

/// Makes their resources known, and reads what the user has chosen for them; there is none.
void register_editors(const EditorHooks& hooks);

/// The editor of a file, in front: a new one of the project where there is none. `path` is
/// absolute. Null after the user was told that it can't be read.
EditorWindow* open_editor(Window project, std::string_view path);
/// An empty one. Null after the user was told that there is none.
EditorWindow* open_new_editor(Window project);
/// Shows what a crash has left of the text of a file, or of one without a file where `path` is
/// empty: in its editor, as one step that can be taken back, or in a new one. False after the user
/// was told that it can't be read.
bool restore_text(Window project, std::string_view path, std::string_view copy);
/// Null where the file has none.
[[nodiscard]] EditorWindow* find_editor(std::string_view path);
/// The project's one that had the focus last; null where it has none.
[[nodiscard]] EditorWindow* front_editor(Window project);
/// All of them, in the order in which they were opened.
[[nodiscard]] Vector<EditorWindow*> open_editors();

/// Asks the editors of a project, in the order in which they were opened, about what is not saved;
/// false at the first that must stay. None is closed yet.
[[nodiscard]] bool may_close_editors(Window project);
/// Closes them without a question.
void close_editors(Window project);
/// What was chosen for the project has changed.
void apply_editor_options(Window project);

/// Writes copies of the texts of a project that are not saved, one in each turn of the loop.
void save_copies(Window project);
/// The same of all texts at once, for a program that must end now.
void save_all_copies();

} // namespace pellux
