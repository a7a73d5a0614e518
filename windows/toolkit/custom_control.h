#pragma once

#include "core/common/containers.h"
#include "windows/toolkit/event.h"

#include <span>
#include <string_view>

namespace pellux {

// Controls that this program draws itself. A class is a name and an event handler; each control of
// it is a pane that keeps its property strings, one per line, NAME=VALUE.

/// Makes a class known, in place of one of that name.
void xvt_cxo_register(std::string_view class_name, EventHandler handler);

struct CustomControlSpec {
    std::string_view class_name = {};
    Window parent = Window::none;
    int id = 0; ///< unique in its parent, not 0
    Rect rect = {};
    std::string_view title = {};
    std::span<const std::string_view> properties = {};
    PixelUnits units = PixelUnits::logical;
    bool takes_focus = false;
    bool takes_tab = false; ///< as of a pane
};
/// None for a class that does not exist, or when the creation handler destroyed the control.
Window xvt_cxo_create(const CustomControlSpec& spec);
[[nodiscard]] std::span<const String> xvt_cxo_get_properties(Window control);

/// What a control is to assistive technology, which says it with the control's name. A press from
/// there comes as a blank typed.
enum class ControlRole { pane, tool_bar, button, check_box, status_bar, progress_bar, text };
struct ControlAccess {
    ControlRole role = ControlRole::pane;
    bool is_pressed = false; ///< held down
    bool is_checked = false;
    bool is_mixed = false; ///< neither checked nor not
};
/// In the control's creation event, before its name is set, and again after each change.
void xvt_cxo_set_access(Window control, const ControlAccess& access);

/// Tells the parent of `control`, whose id and handle are put into the notice. False when there is
/// no such control.
bool xvt_cxo_notify(Window control, NoticeEvent notice);

} // namespace pellux
