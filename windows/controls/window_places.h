#pragma once

#include "windows/toolkit/window.h"

namespace pellux {

// Where frames of windows stand. All places are outer rectangles.

/// Moves a window so that its frame takes the place `outer`, as thick as the frame is now.
void move_frame(Window window, const Rect& outer);

} // namespace pellux
