#include "windows/toolkit/qt/windows/menu_actions.h"

#include "windows/toolkit/qt/boxes/about.h"
#include "windows/toolkit/qt/text_conversion.h"
#include "windows/toolkit/qt/windows/window_table.h"

#include <QCoreApplication>
#include <QMenu>
#include <QMenuBar>

namespace pellux {

QString marked_title(const MenuItem& item) {
    const std::string_view title = item.title;
    const auto marked = [](std::string_view part) {
        return to_qstring(part).replace(QLatin1Char('&'), QLatin1String("&&"));
    };
    if (item.mnemonic >= title.size())
        return marked(title);
    return marked(title.substr(0, item.mnemonic)) + QLatin1Char('&') +
           marked(title.substr(item.mnemonic));
}

void show_checked(QAction& action, bool is_checked) {
    action.setCheckable(is_checked);
    action.setChecked(is_checked);
}

void fill_menu(QMenu& menu, Window owner, std::span<const MenuItem> items) {
    for (const MenuItem& item : items) {
        if (item.is_separator) {
            menu.addSeparator();
            continue;
        }
        if (!item.items.empty()) {
            fill_menu(*menu.addMenu(marked_title(item)), owner, item.items);
            continue;
        }
        QAction* action = menu.addAction(marked_title(item));
        action->setData(item.tag);
        action->setEnabled(item.is_enabled);
        show_checked(*action, item.is_checked);
        // Qt takes a mark off when the item is chosen.
        QObject::connect(action, &QAction::triggered, action,
                         [action] { action->setChecked(action->isCheckable()); });
        action->setShortcut(QKeySequence(to_qstring(item.shortcut), QKeySequence::PortableText));
        // The command may destroy the menu that it comes from.
        QObject::connect(
            action, &QAction::triggered, QCoreApplication::instance(),
            [owner, tag = item.tag] { deliver(owner, Event{CommandEvent{tag}}); },
            Qt::QueuedConnection);
    }
}

QAction* find_action(const QList<QAction*>& actions, int tag) {
    for (QAction* action : actions) {
        if (QMenu* below = action->menu()) {
            if (QAction* found = find_action(below->actions(), tag))
                return found;
        } else if (action->data().toInt() == tag && !action->isSeparator()) {
            return action;
        }
    }
    return nullptr;
}

void fill_menu_bar(QMenuBar& bar, Window owner, const Vector<MenuItem>& menus,
                   const OwnMenus& own) {
    QAction* windows = own.window->menuAction();
    for (QAction* action : bar.actions()) {
        bar.removeAction(action);
        if (action->menu() != nullptr && action != windows)
            action->menu()->deleteLater();
    }
    for (const MenuItem& menu : menus) {
        auto* shown = new QMenu(marked_title(menu), &bar);
        shown->menuAction()->setData(menu.tag);
        fill_menu(*shown, owner, menu.items);
        if (menu.tag == own.help) {
            bar.addAction(windows);
            add_about(*shown);
        }
        bar.addMenu(shown);
    }
    if (!menus.empty() && !bar.actions().contains(windows))
        bar.addAction(windows);
}

} // namespace pellux
