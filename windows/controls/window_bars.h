#pragma once

#include "windows/toolkit/event.h"

#include <span>
#include <string_view>

namespace pellux {

/// The toolbar at the top of a window and the status bar at its bottom, by their ids in it.
struct WindowBars {
    int toolbar = 0;
    int status_bar = 0;
    /// More properties of the status bar. With one that makes a field a button the bar takes the
    /// focus.
    std::span<const std::string_view> status_lines = {};
};

/// Makes both, of the looks that all windows have; the window has its size. `title` is the
/// toolbar's name, `toolbar_lines` its properties.
void create_window_bars(Window window, const WindowBars& bars, std::string_view title,
                        std::span<const std::string_view> toolbar_lines);
/// Fits them to the window, and answers the room that they leave; logical pixels.
[[nodiscard]] Rect lay_out_window_bars(Window window, const WindowBars& bars);

} // namespace pellux
