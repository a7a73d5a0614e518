#pragma once

#include "windows/app/help_hooks.h"
#include "windows/app/placement.h"
#include "windows/app/startup.h"
#include "windows/app/tools_menu.h"

namespace pellux {

/// The program around the windows of projects; one, as long as the application runs.
struct Shell {
    StartOptions options;
    std::optional<String> last_directory; ///< of the last run
    Placement placement;                  ///< the last one that was restored or taken note of
    bool is_placed = false;               ///< restored in this run
    bool has_ended = false; ///< the settings are written and the application destroyed
    ToolsMenu tools;
    HelpHooks help;
};

/// Puts the task window into its place, goes to the directory to start in and opens the projects
/// there: the one that the command line names, else all of the directory, else a new one.
void open_starting_projects(Shell& shell);

/// Asks whether to quit, and closes every project. False when the user cancelled either, or is
/// being asked such a thing already. The last project's closing has ended the program.
[[nodiscard]] bool ask_to_quit(Shell& shell);
/// The command Quit: ends the program if the user agrees.
void quit(Shell& shell);
/// Writes the settings and destroys the application, once.
void end_application(Shell& shell);

} // namespace pellux
