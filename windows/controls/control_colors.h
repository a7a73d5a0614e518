#pragma once

#include "windows/toolkit/color.h"

namespace pellux {

/// `percent` of `over`, the rest of `under`; a colour of its own.
[[nodiscard]] Color mix_colors(Color under, Color over, int percent);

/// What the screen shows where a stored colour is the ground.
[[nodiscard]] Color shown_ground(Color fill);

} // namespace pellux
