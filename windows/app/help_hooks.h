#pragma once

#include "windows/toolkit/app.h"

namespace pellux {

// Two hooks that see every event before its window does and offer it to the help system. One is in
// force at a time; the simple one is the program's, the locating one asks the user where the help
// file lies.

struct HelpHooks {
    bool is_tried = false;  ///< the simple hook has looked for its file
    bool is_asking = false; ///< the locating hook has its question on the screen
};

/// Opens the help file that the variable `HELP` leads to when the first event comes.
[[nodiscard]] EventHook simple_help_hook(HelpHooks& hooks);
/// Opens the help file beside the program, or asks the user for it, when help is wanted.
[[nodiscard]] EventHook locating_help_hook(HelpHooks& hooks);

/// Closes the file that either of them opened, and forgets what waits for one.
void close_help();

/// Shows the contents of the installed help file; tells the user when it can't be opened.
void show_help_contents();

inline constexpr int k_first_help_command = 32450; ///< tags that want help
inline constexpr int k_last_help_command = 32462;

} // namespace pellux
