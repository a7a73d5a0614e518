#include "windows/toolkit/qt/windows/menus.h"

#include "windows/toolkit/menu_resource.h"
#include "windows/toolkit/qt/boxes/about.h"
#include "windows/toolkit/qt/text_conversion.h"
#include "windows/toolkit/qt/windows/places.h"
#include "windows/toolkit/qt/windows/task_window.h"
#include "windows/toolkit/qt/windows/window_table.h"

#include <QCoreApplication>
#include <QMenu>
#include <QMenuBar>

namespace pellux {
namespace {

/// With Qt's '&' before the mnemonic.
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
        action->setCheckable(item.is_checked);
        action->setChecked(item.is_checked);
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

/// Changes an item in the window's tree, and where it is shown.
template <typename Change, typename Show>
void change_item(Window window, int tag, Change change, Show show) {
    WindowRecord* record = find_window(window);
    if (record == nullptr || !record->menus)
        return;
    MenuItem* item = find_item(*record->menus, tag);
    if (item == nullptr)
        return;
    change(*item);
    TaskWindow* task = task_window();
    if (task == nullptr || task->menu_owner() != window)
        return;
    if (QAction* action = find_action(task->menuBar()->actions(), tag))
        show(*action, *item);
}

} // namespace

void fill_menu_bar(QMenuBar& bar, Window owner, const Vector<MenuItem>& menus, int help_menu) {
    for (QAction* action : bar.actions()) {
        bar.removeAction(action);
        if (action->menu() != nullptr)
            action->menu()->deleteLater();
    }
    for (const MenuItem& menu : menus) {
        auto* shown = new QMenu(marked_title(menu), &bar);
        shown->menuAction()->setData(menu.tag);
        fill_menu(*shown, owner, menu.items);
        if (menu.tag == help_menu)
            add_about(*shown);
        bar.addMenu(shown);
    }
}

void xvt_menu_popup(Window window, std::span<const MenuItem> items, Point at) {
    const WindowRecord* record = find_window(window);
    if (record == nullptr || record->widget == nullptr || items.empty())
        return;
    auto* menu = new QMenu(record->widget);
    fill_menu(*menu, window, items);
    QObject::connect(menu, &QMenu::aboutToHide, menu, &QObject::deleteLater);
    menu->popup(record->widget->mapToGlobal(to_widget(*record, at)).toPoint());
}

Vector<MenuItem> xvt_menu_get_tree(Window window) {
    const WindowRecord* record = find_window(window);
    return record == nullptr || !record->menus ? Vector<MenuItem>() : *record->menus;
}

void xvt_menu_set_tree(Window window, const Vector<MenuItem>& menus) {
    WindowRecord* record = find_window(window);
    if (record == nullptr)
        return;
    record->menus = make_owned<Vector<MenuItem>>(menus);
    if (TaskWindow* task = task_window(); task != nullptr && task->menu_owner() == window)
        task->show_menus();
}

void xvt_menu_set_item_enabled(Window window, int tag, bool is_enabled) {
    change_item(
        window, tag, [&](MenuItem& item) { item.is_enabled = is_enabled; },
        [](QAction& action, const MenuItem& item) { action.setEnabled(item.is_enabled); });
}

void xvt_menu_set_item_checked(Window window, int tag, bool is_checked) {
    change_item(
        window, tag, [&](MenuItem& item) { item.is_checked = is_checked; },
        [](QAction& action, const MenuItem& item) {
            action.setCheckable(item.is_checked);
            action.setChecked(item.is_checked);
        });
}

void xvt_menu_set_item_title(Window window, int tag, std::string_view title) {
    change_item(
        window, tag, [&](MenuItem& item) { set_title(item, title); },
        [](QAction& action, const MenuItem& item) { action.setText(marked_title(item)); });
}

} // namespace pellux
