#pragma once

#include "windows/toolkit/menu.h"

#include <QString>

#include <span>

class QAction;
class QMenu;
class QMenuBar;

namespace pellux {

/// With Qt's '&' before the mnemonic.
[[nodiscard]] QString marked_title(const MenuItem& item);
/// Adds items. What is chosen comes to `owner` as a command event, after the menu is gone.
void fill_menu(QMenu& menu, Window owner, std::span<const MenuItem> items);
/// The item of a tag, at any depth, or null.
[[nodiscard]] QAction* find_action(const QList<QAction*>& actions, int tag);
/// Puts menus in place of those that the bar has. What is chosen comes to `owner` as a command
/// event, after the menu is gone. The menu `help_menu` gets the toolkit's own "About" item.
void fill_menu_bar(QMenuBar& bar, Window owner, const Vector<MenuItem>& menus, int help_menu);

} // namespace pellux
