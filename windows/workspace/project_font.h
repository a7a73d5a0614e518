#pragma once

#include "core/project/records.h"
#include "windows/toolkit/event.h"

namespace pellux {

/// Gives the list the font that the project keeps, if it keeps one.
void show_list_font(Window window, const Project& project);
/// Asks for the font of the list, which the project keeps.
void choose_list_font(Window window);

} // namespace pellux
