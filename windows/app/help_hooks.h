#pragma once

#include "core/common/containers.h"
#include "windows/toolkit/app.h"
#include "windows/toolkit/help.h"

namespace pellux {

// Two hooks that see every event before its window does and offer it to the help system. One is in
// force at a time; the simple one is the program's, the locating one asks the user where the help
// file lies.

/// A subject's topic that waits for a help file.
struct HelpAssociation {
    HelpSubject subject;
    int topic = 0;
};

struct HelpHooks {
    HelpFile file = HelpFile::none; ///< opened by either of them
    bool is_tried = false;          ///< the simple hook has looked for its file
    bool is_asking = false;         ///< the locating hook has its question on the screen
    Vector<HelpAssociation> waiting;
};

/// Opens the help file that the variable `HELP` leads to when the first event comes.
[[nodiscard]] EventHook simple_help_hook(HelpHooks& hooks);
/// Opens the help file beside the program, or asks the user for it, when help is wanted.
[[nodiscard]] EventHook locating_help_hook(HelpHooks& hooks);

/// Ties a subject to a topic, now or as soon as a help file is open.
void associate_help(HelpHooks& hooks, const HelpSubject& subject, int topic);
/// Closes the file, and forgets what waits for one.
void close_help(HelpHooks& hooks);

/// Shows the contents of the installed help file; tells the user when it can't be opened.
void show_help_contents();

inline constexpr int k_first_help_command = 32450; ///< tags that want help
inline constexpr int k_last_help_command = 32462;

} // namespace pellux
