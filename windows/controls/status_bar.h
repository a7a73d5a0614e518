#pragma once

#include "windows/toolkit/event.h"

#include <string_view>

namespace pellux {

// The status bar: a custom control that shows its title, one line of UTF-8 whose fields tabs part.
// Its properties: DEFAULT_TEXT (shown while the title is empty), FIELD_OFFSET and LEFT_OFFSET (room
// between fields, and at both ends), FILL_COLOR, TEXT_COLOR, PLAIN, FONTFAMILY, FONTSIZE (height
// in logical pixels), HEIGHT or SIZE, AUTOSIZED, SCALED, TRANSLATED, TASK_WIN, DEBUG, BUTTON (the
// number of a field that can be pressed, from 0) and BUTTON_TIP. A press, Enter, a blank or the
// menu key on that field comes to the parent as a notice; Escape gives the focus to it.

inline constexpr std::string_view k_status_bar_class = "status bar";
/// Number of the notice that the field was pressed.
inline constexpr int k_status_notice = 103;

/// Sets the title and draws again what it changes. The fields but the first keep their greatest
/// width while their number stays, so that a clock does not move what stands beside it.
void set_status_text(Window status_bar, std::string_view text);

/// Fits an autosized bar to the bottom of its parent; one that is only translated keeps its width.
void status_bar_autosize(Window status_bar);

/// Handler of the class.
long status_bar_event(void* context, Window window, const Event& event);

} // namespace pellux
