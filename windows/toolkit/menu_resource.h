#pragma once

#include "windows/toolkit/menu.h"
#include "windows/toolkit/resource.h"

namespace pellux {

/// The menus that a bar has at first.
[[nodiscard]] Vector<MenuItem> menu_tree(const MenuBarResource& resource);
/// The menu or item of a tag, at any depth, or null.
[[nodiscard]] MenuItem* find_item(Vector<MenuItem>& menus, int tag);

} // namespace pellux
