#pragma once

#include "windows/app/shell.h"

namespace pellux {

void register_start_picture();
/// Shows the start-up picture: name, mark and version. A click, a key or its close box take it away
/// and open the starting projects. None when there is no window for it.
Window show_start_picture(Shell& shell);

} // namespace pellux
