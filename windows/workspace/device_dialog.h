#pragma once

#include "windows/toolkit/event.h"

namespace pellux {

/// Makes the dialog known.
void register_device_dialog();
/// Asks for the device and the package of a window's project: those of the device catalogue, or any
/// texts where there is none. What was chosen is one change of the project's options.
void ask_for_device(Window window);

} // namespace pellux
