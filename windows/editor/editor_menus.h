#pragma once

#include "windows/editor/editor_settings.h"
#include "windows/toolkit/menu.h"

namespace pellux {

/// Makes the menu bar of editors known.
void register_editor_menus();
inline constexpr int k_editor_menu_bar = 1200;

/// The menus with the keys of the user's scheme, the texts opened last, and the marks at what is
/// chosen.
[[nodiscard]] Vector<MenuItem> editor_menus(const EditorSettings& settings);
/// The menu of the right button, its items as they stand in these menus.
[[nodiscard]] Vector<MenuItem> editor_popup(Vector<MenuItem> menus);

} // namespace pellux
