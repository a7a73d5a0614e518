#pragma once

#include "windows/app/shell.h"

namespace pellux {

/// Asks whether to quit, and closes every project. False when the user cancelled either, or is
/// being asked such a thing already. The last project's closing has ended the program.
[[nodiscard]] bool ask_to_quit(Shell& shell);
/// The command Quit: ends the program if the user agrees.
void quit(Shell& shell);
/// Writes the settings and destroys the application, once.
void end_application(Shell& shell);

} // namespace pellux
