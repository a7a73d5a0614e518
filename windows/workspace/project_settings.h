#pragma once

#include "windows/toolkit/event.h"

namespace pellux {

// What a user chooses once for a project, which keeps it.

/// Asks for the font of the list.
void choose_list_font(Window window);
/// Asks for the page that the project is printed on.
void set_up_page(Window window);

} // namespace pellux
