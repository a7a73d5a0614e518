#pragma once

#include "windows/controls/toolbar_lines.h"
#include "windows/toolkit/event.h"

#include <span>
#include <string_view>

namespace pellux {

// The toolbar: a custom control that is built from the control lines of its properties. What
// happens to a control in it comes to the toolbar's parent as a notice with the control's id, its
// `ToolbarPart` and the event. Left and Right (Up and Down on a vertical bar) move the focus in it,
// Tab and Escape give the focus to the window around it; other keys go there as they are.

inline constexpr std::string_view k_toolbar_class = "toolbar";
/// Number of the notice.
inline constexpr int k_toolbar_notice = 101;

/// Puts a control behind those that are there. False, after an error has been told, when it can't
/// be made; the bar is then as it was.
bool toolbar_add_control(Window toolbar, const ToolbarItem& item);

struct ToolbarCustomControl {
    std::string_view class_name;
    int id = 0;
    std::string_view title = {};
    std::span<const std::string_view> properties = {};
    int width = 0; ///< along the bar; 0: as broad as the bar leaves it high
    bool takes_focus = false;
};
/// The same with a control of a class that `xvt_cxo_register` knows.
bool toolbar_add_custom_control(Window toolbar, const ToolbarCustomControl& control);

void toolbar_delete_all_controls(Window toolbar);
/// Draws the bar and its controls again, now.
void toolbar_force_update(Window toolbar);
/// None for a separator and for an id that is not there.
[[nodiscard]] Window toolbar_get_control(Window toolbar, int id);
/// Fits an autosized bar to the edge of its parent, along the top or down the left side; its other
/// measure stays.
void toolbar_autosize(Window toolbar);

/// Handler of the class.
long toolbar_event(void* context, Window window, const Event& event);

} // namespace pellux
