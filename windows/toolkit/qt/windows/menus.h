#pragma once

#include "windows/toolkit/menu.h"

class QMenuBar;

namespace pellux {

/// Puts menus in place of those that the bar has. What is chosen comes to `owner` as a command
/// event, after the menu is gone. The menu `help_menu` gets the toolkit's own "About" item.
void fill_menu_bar(QMenuBar& bar, Window owner, const Vector<MenuItem>& menus, int help_menu);

} // namespace pellux
