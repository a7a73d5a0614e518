#pragma once

#include "core/common/containers.h"
#include "windows/toolkit/event.h"

#include <cstddef>
#include <span>
#include <string_view>

namespace pellux {

/// A menu, or an item in one.
struct MenuItem {
    static constexpr std::size_t k_no_mnemonic = static_cast<std::size_t>(-1);

    int tag = 0;
    String title;
    std::size_t mnemonic = k_no_mnemonic; ///< where in the title its character stands
    String shortcut = {};
    bool is_separator = false;
    bool is_enabled = true;
    bool is_checked = false;     ///< a mark, which stays as it is when the item is chosen
    Vector<MenuItem> items = {}; ///< of a menu
};

/// Menus of the task window or of a window with a bar of its own; what the active window has, or
/// else the task window, is shown. A chosen item's tag comes as a command event to the window that
/// the bar belongs to.
[[nodiscard]] Vector<MenuItem> xvt_menu_get_tree(Window window);
void xvt_menu_set_tree(Window window, const Vector<MenuItem>& menus);
void xvt_menu_set_item_enabled(Window window, int tag, bool is_enabled);
void xvt_menu_set_item_checked(Window window, int tag, bool is_checked);
void xvt_menu_set_item_title(Window window, int tag, std::string_view title);

/// Shows a menu at a place in the window's units. What is chosen comes to the window as a command
/// event, after the menu is gone.
void xvt_menu_popup(Window window, std::span<const MenuItem> items, Point at);

/// Takes the '&' before its mnemonic out of a title ("&&" stands for "&").
void set_title(MenuItem& item, std::string_view title);

} // namespace pellux
