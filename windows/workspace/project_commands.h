#pragma once

#include "windows/toolkit/event.h"

namespace pellux {

// The commands of a project's window, by their tags in its menus, its toolbar and its keys.

/// Runs the command of a menu's tag; false when it is not one of the window's own. The window may
/// be gone afterwards.
bool run_project_command(Window window, int tag);
/// Can it be done now?
[[nodiscard]] bool can_run_project_command(Window window, int tag);
/// The tag of a toolbar button's command; 0 for none.
[[nodiscard]] int command_of_button(int button);
/// Enables what can be done now: with what is selected, and with what the clipboard holds.
void update_project_commands(Window window);
/// Says in the menus what would be taken back, or made again.
void update_history_titles(Window window);
/// The context menu of the list.
void show_list_menu(Window window, Point at);
/// Runs the command of a key that compiles or goes on to a place; false when it is another key.
bool run_compile_key(Window window, const CharacterEvent& key);
/// The same with every command that no menu has.
bool run_project_key(Window window, const CharacterEvent& key);

} // namespace pellux
