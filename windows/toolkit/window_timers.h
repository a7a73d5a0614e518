#pragma once

#include "windows/toolkit/timer.h"

namespace pellux {

/// Ends the timers of a window that goes.
void end_timers(Window window);

} // namespace pellux
