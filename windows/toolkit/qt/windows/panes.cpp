#include "windows/toolkit/control_classes.h"
#include "windows/toolkit/qt/text_conversion.h"
#include "windows/toolkit/qt/windows/canvas.h"
#include "windows/toolkit/qt/windows/input_method.h"
#include "windows/toolkit/qt/windows/window_table.h"
#include "windows/toolkit/window.h"

#include <algorithm>

namespace pellux {
namespace {

/// What panes and custom controls have in common; null without a parent that is there.
WindowRecord* add_pane(const PaneSpec& spec) {
    const WindowRecord* parent = find_window(spec.parent);
    if (parent == nullptr || parent->widget == nullptr || parent->is_closing)
        return nullptr;
    QWidget* around = parent->widget;
    WindowRecord& record = add_window(WindowKind::pane, spec.parent);
    record.id = spec.id;
    record.handler = spec.handler;
    add_surface(record, spec.units);
    auto* pane = new Canvas(around, record.handle, spec.takes_tab);
    set_widget(record, pane);
    if (spec.takes_focus)
        pane->setFocusPolicy(Qt::StrongFocus);
    if (spec.takes_text)
        enable_composition(*pane);
    const Rect& rect = spec.rect;
    pane->setGeometry(rect.left, rect.top, std::max(0, width(rect)), std::max(0, height(rect)));
    fit_surface(*record.surface);
    return &record;
}

/// Sends the creation event; none when the handler destroyed the window.
Window complete(Window window) {
    deliver(window, Event{CreationEvent{}});
    WindowRecord* record = find_window(window);
    if (record == nullptr)
        return Window::none;
    record->widget->show();
    return window;
}

} // namespace

Window xvt_win_create_pane(const PaneSpec& spec) {
    const WindowRecord* record = add_pane(spec);
    return record == nullptr ? Window::none : complete(record->handle);
}

Window xvt_cxo_create(const CustomControlSpec& spec) {
    const EventHandler* handler = find_control_class(spec.class_name);
    if (handler == nullptr)
        return Window::none;
    WindowRecord* record = add_pane({.parent = spec.parent,
                                     .id = spec.id,
                                     .rect = spec.rect,
                                     .handler = *handler,
                                     .units = spec.units,
                                     .takes_focus = spec.takes_focus,
                                     .takes_tab = spec.takes_tab});
    if (record == nullptr)
        return Window::none;
    for (const std::string_view line : spec.properties)
        record->properties.emplace_back(line);
    record->title = spec.title;
    return complete(record->handle);
}

std::span<const String> xvt_cxo_get_properties(Window control) {
    const WindowRecord* record = find_window(control);
    if (record == nullptr)
        return {};
    return record->properties;
}

bool xvt_cxo_notify(Window control, NoticeEvent notice) {
    const WindowRecord* record = find_window(control);
    if (record == nullptr)
        return false;
    notice.id = record->id;
    notice.control = control;
    deliver(record->parent, Event{notice});
    return true;
}

} // namespace pellux
