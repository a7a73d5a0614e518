#include "windows/toolkit/menu_resource.h"
#include "windows/toolkit/qt/windows/menu_actions.h"
#include "windows/toolkit/qt/windows/places.h"
#include "windows/toolkit/qt/windows/task_window.h"
#include "windows/toolkit/qt/windows/window_table.h"

#include <QMenu>
#include <QMenuBar>

namespace pellux {
namespace {

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
        [](QAction& action, const MenuItem& item) { show_checked(action, item.is_checked); });
}

void xvt_menu_set_item_title(Window window, int tag, std::string_view title) {
    change_item(
        window, tag, [&](MenuItem& item) { set_title(item, title); },
        [](QAction& action, const MenuItem& item) { action.setText(marked_title(item)); });
}

} // namespace pellux
