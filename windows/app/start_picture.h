#pragma once

#include "windows/app/shell.h"
#include "windows/toolkit/resource.h"

namespace pellux {

/// Shows the start-up picture: name, mark and version. A click, a key or its close box take it away
/// and open the starting projects. None when there is no window for it.
Window show_start_picture(Shell& shell);

inline constexpr int k_start_picture_window = 103;

} // namespace pellux
