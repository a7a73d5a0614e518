#pragma once

#include "windows/toolkit/event.h"

#include <string_view>

namespace pellux {

// The picture and text buttons of a toolbar. Properties of one: its title (or "*no title*") as the
// first line, SIZE and POS, STATE, DESC (tool tip, and what a screen reader says), IMAGE (number of
// a picture), FILL_COLOR of what it stands on, TEXT_COLOR. It tells its parent of a click by a
// notice; keys other than Space and Enter go on to its parent.

inline constexpr std::string_view k_toggle_button_class = "toggle button";
inline constexpr std::string_view k_no_title = "*no title*";
/// Number of the notice.
inline constexpr int k_toggle_clicked = 1;

/// PUSH and its kin are those of a button that only clicks, the others of one that stays down.
/// The numbers are given: 0 is an enabled button, 4 a disabled one.
enum class ToggleState {
    push = 0,
    mouse_down = 1, ///< held by the pointer
    down = 2,
    indeterminate = 3,
    disabled = 4,
    down_disabled = 5,
    push_disabled = 6,
    up = 7,
};

/// A button that stays down takes `push` as `up`.
void toggle_button_set_state(Window button, ToggleState state);
[[nodiscard]] ToggleState toggle_button_get_state(Window button);

/// Handler of the class.
long toggle_button_event(void* context, Window window, const Event& event);

} // namespace pellux
