#pragma once

#include "windows/toolkit/event.h"

namespace pellux {

/// Makes the dialog known.
void register_project_options();
/// Lets the user set what holds for all of a project: how it is compiled, how its texts look, how
/// it is simulated.
void ask_for_project_options(Window window);

} // namespace pellux
