#pragma once

#include "windows/toolkit/event.h"

#include <string_view>

namespace pellux {

// What stands around the text of a compile window: its toolbar above, below it the status bar and,
// while something runs, a progress bar.

/// The buttons, by their ids in the toolbar.
enum class CompileButton : int {
    next_error = 221,
    previous_error = 222,
    locate_error = 223,
    halt = 224,
    close = 225,
    open_waveform = 226,
};

/// Makes them; the window has its size.
void create_compile_bars(Window window);
/// Fits them to the window, and answers the room that they leave; logical pixels.
[[nodiscard]] Rect lay_out_compile_bars(Window window, bool shows_progress);

void enable_compile_button(Window window, CompileButton button, bool is_enabled);
void show_compile_status(Window window, std::string_view text);
/// See `set_progress`.
void show_compile_progress(Window window, int part, std::string_view words);

} // namespace pellux
