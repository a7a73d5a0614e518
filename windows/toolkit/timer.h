#pragma once

#include "windows/toolkit/event.h"

#include <cstdint>

namespace pellux {

/// A timer that sends its window a timer event again and again; what was missed comes once. It ends
/// with its window. None for a window that is gone.
TimerId xvt_timer_create(Window window, std::int64_t interval_ms);
void xvt_timer_destroy(TimerId timer);

} // namespace pellux
