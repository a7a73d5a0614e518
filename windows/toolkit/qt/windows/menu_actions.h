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
/// Without an empty box where there is no mark.
void show_checked(QAction& action, bool is_checked);
/// Adds items. What is chosen comes to `owner` as a command event, after the menu is gone.
void fill_menu(QMenu& menu, Window owner, std::span<const MenuItem> items);
/// The item of a tag, at any depth, or null.
[[nodiscard]] QAction* find_action(const QList<QAction*>& actions, int tag);

/// What the toolkit adds to every bar.
struct OwnMenus {
    int help = 0;            ///< tag of the menu that gets the "About" item
    QMenu* window = nullptr; ///< stands before that, else at the end; the bar doesn't own it
};
/// Puts menus in place of those that the bar has; a bar without any gets none of ours.
void fill_menu_bar(QMenuBar& bar, Window owner, const Vector<MenuItem>& menus, const OwnMenus& own);

} // namespace pellux
