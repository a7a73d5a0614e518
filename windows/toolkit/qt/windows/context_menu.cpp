#include "windows/toolkit/qt/windows/context_menu.h"

#include "windows/toolkit/qt/windows/places.h"
#include "windows/toolkit/qt/windows/window_table.h"

#include <QKeyEvent>

namespace pellux {

bool asks_for_menu(const QKeyEvent& event) {
    return event.key() == Qt::Key_Menu ||
           (event.key() == Qt::Key_F10 && event.modifiers() == Qt::ShiftModifier);
}

void ask_for_menu(Window window, QPointF place, int control) {
    for (const WindowRecord* record = find_window(window);
         record != nullptr && record->widget != nullptr && record->kind != WindowKind::task;
         record = find_window(window)) {
        if (deliver(window, Event{ContextMenuEvent{to_units(*record, place), control}}) == 0)
            return;
        record = find_window(window);
        const WindowRecord* around = record == nullptr ? nullptr : find_window(record->parent);
        if (around == nullptr || around->widget == nullptr)
            return;
        place = record->widget->mapTo(around->widget.data(), place);
        control = record->id;
        window = around->handle;
    }
}

} // namespace pellux
