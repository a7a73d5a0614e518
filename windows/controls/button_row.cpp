#include "windows/controls/button_row.h"

#include "windows/toolkit/control.h"
#include "windows/toolkit/window.h"

#include <algorithm>

namespace pellux {

void create_button_row(Window window, std::span<const RowButton> buttons) {
    for (const RowButton& button : buttons)
        xvt_vobj_set_title(xvt_ctl_create({.parent = window, .id = button.id}), button.title);
}

Rect lay_out_button_row(Window window, std::span<const RowButton> buttons) {
    constexpr int k_width = 104;
    constexpr int k_height = 28;
    constexpr int k_gap = 8;
    Rect area = xvt_vobj_get_client_rect(window);
    const int top = area.bottom - k_gap - k_height;
    int right = area.right - k_gap;
    for (auto button = buttons.rbegin(); button != buttons.rend(); ++button) {
        xvt_vobj_move(xvt_win_get_ctl(window, button->id),
                      {top, right - k_width, top + k_height, right});
        right -= k_width + k_gap;
    }
    area.bottom = std::max(area.top, top - k_gap);
    return area;
}

} // namespace pellux
