#pragma once

#include "core/common/containers.h"
#include "windows/toolkit/event.h"

#include <span>
#include <string_view>

namespace pellux {

enum class ControlKind {
    button,
    check,
    radio,
    edit,
    text,
    list,        ///< one entry is chosen
    list_many,   ///< any number of entries is
    list_button, ///< a list that drops down
    list_edit,   ///< one with a text that can be typed as well
};

struct ControlSpec {
    Window parent = Window::none;
    ControlKind kind = ControlKind::button;
    int id = 0; ///< unique in its parent, not 0
    std::string_view title = {};
    Rect rect = {};
};

/// A control of the desktop's own kind. What happens to it comes to its parent as a control event.
Window xvt_ctl_create(const ControlSpec& spec);
void xvt_ctl_set_checked(Window control, bool is_checked);
[[nodiscard]] bool xvt_ctl_is_checked(Window control);

// Entries of the list kinds, counted from 0.

void xvt_list_set_items(Window list, std::span<const String> items);
[[nodiscard]] int xvt_list_count(Window list);
[[nodiscard]] String xvt_list_get_item(Window list, int index);
/// -1 for none.
void xvt_list_set_selection(Window list, int index);
[[nodiscard]] int xvt_list_get_selection(Window list);

} // namespace pellux
