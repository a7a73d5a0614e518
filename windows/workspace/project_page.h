#pragma once

#include "windows/toolkit/event.h"

namespace pellux {

/// Asks for the page that a project is printed on, which the project keeps.
void set_up_page(Window window);

} // namespace pellux
