#pragma once

#include "windows/toolkit/event.h"

namespace pellux {

// The window that offers what earlier runs of the program left unsaved when they crashed: texts and
// projects, each to be restored, looked at, deleted, or left for later.

/// Makes the resources of the window known; there is none.
void register_recovery_window();
/// Shows the window, where there is anything to offer; else none.
Window offer_left_work();

} // namespace pellux
