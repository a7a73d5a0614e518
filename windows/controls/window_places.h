#pragma once

#include "windows/toolkit/window.h"

namespace pellux {

// Where frames of windows stand. All places are outer rectangles.

/// `place`, no larger than `area` and moved into it by as little as needed.
[[nodiscard]] Rect moved_into(const Rect& place, const Rect& area);

/// Moves a window so that its frame takes the place `outer`, as thick as the frame is now.
void move_frame(Window window, const Rect& outer);

} // namespace pellux
