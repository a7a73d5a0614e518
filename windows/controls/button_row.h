#pragma once

#include "windows/toolkit/event.h"

#include <span>

namespace pellux {

/// A push button below what a window shows.
struct RowButton {
    int id = 0;
    const char* title = ""; ///< '&' before its mnemonic
};

/// Makes the buttons of a window.
void create_button_row(Window window, std::span<const RowButton> buttons);
/// Places them at the window's lower right corner, in their order, and answers the room above them;
/// logical pixels.
[[nodiscard]] Rect lay_out_button_row(Window window, std::span<const RowButton> buttons);

} // namespace pellux
