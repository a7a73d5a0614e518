#pragma once

#include "windows/app/help_hooks.h"
#include "windows/app/placement.h"
#include "windows/app/start_options.h"
#include "windows/app/tools_menu.h"

#include <span>

namespace pellux {

/// The program around the windows of projects; one, as long as the application runs.
struct Shell {
    StartOptions options;
    Placement placement;    ///< the last one that was restored or taken note of
    bool is_placed = false; ///< restored in this run
    bool has_ended = false; ///< the settings are written and the application destroyed
    ToolsMenu tools;
    HelpHooks help;
};

/// Reads the words behind the program's name and the settings of the last run, and makes all
/// windows known. The application can be created then.
void start_shell(Shell& shell, std::span<const char* const> words);

/// The whole program; answers its exit status.
int run_pellux(int argument_count, char** arguments);

} // namespace pellux
