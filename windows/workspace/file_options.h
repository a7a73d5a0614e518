#pragma once

#include "windows/toolkit/event.h"

namespace pellux {

/// Makes the dialog known.
void register_file_options();
/// Lets the user set what holds for the selected files alone: library, note, top design.
void ask_for_file_options(Window window);

} // namespace pellux
