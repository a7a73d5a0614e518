#include "windows/toolkit/qt/windows/window_table.h"

#include "windows/toolkit/app.h"
#include "windows/toolkit/clipboard.h"
#include "windows/toolkit/window.h"
#include "windows/toolkit/window_timers.h"

#include <QVariant>

#include <algorithm>

namespace pellux {
namespace {

/// A place in the table; the generation tells its present window from those before.
struct Slot {
    Owned<WindowRecord> record;
    std::uint32_t generation = 0;
};

struct WindowTable {
    Vector<Slot> places;
    Vector<std::uint32_t> free;
    EventHook hook;
};
WindowTable table;

constexpr int k_generation_shift = 32;
constexpr const char* k_handle_property = "window_handle";

Slot* find_slot(Window window) {
    const auto number = static_cast<std::uint64_t>(window);
    const std::uint64_t index = (number & 0xFFFFFFFF) - 1;
    if (index >= table.places.size())
        return nullptr;
    Slot& slot = table.places[index];
    const bool is_present = slot.record && slot.generation == number >> k_generation_shift;
    return is_present ? &slot : nullptr;
}

bool hook_consumes(Window window, const Event& event) {
    const EventHook hook = table.hook;
    return hook.consumes != nullptr && hook.consumes(hook.context, window, event);
}

/// The hook before it may have destroyed the window.
long handle(Window window, const Event& event) {
    const WindowRecord* record = find_window(window);
    if (record == nullptr || record->handler.handle == nullptr)
        return 0;
    const EventHandler handler = record->handler;
    return handler.handle(handler.context, window, event);
}

} // namespace

WindowRecord* find_window(Window window) {
    Slot* slot = find_slot(window);
    return slot == nullptr ? nullptr : slot->record.get();
}

WindowRecord& add_window(WindowKind kind, Window parent) {
    if (table.free.empty()) {
        table.places.emplace_back();
        table.free.push_back(static_cast<std::uint32_t>(table.places.size() - 1));
    }
    const std::uint32_t index = table.free.back();
    table.free.pop_back();
    Slot& slot = table.places[index];
    ++slot.generation;
    slot.record = make_owned<WindowRecord>();
    WindowRecord& record = *slot.record;
    record.handle =
        static_cast<Window>(std::uint64_t{slot.generation} << k_generation_shift | (index + 1));
    record.kind = kind;
    record.parent = parent;
    if (WindowRecord* around = find_window(parent))
        around->children.push_back(record.handle);
    return record;
}

void remove_window(Window window) {
    WindowRecord* record = find_window(window);
    if (record == nullptr || record->is_closing)
        return;
    record->is_closing = true;
    while (!record->children.empty()) {
        const Window child = record->children.back();
        record->children.pop_back();
        remove_window(child);
    }
    end_timers(window);
    record->trap.reset();
    xvt_cb_withdraw_selection(window);
    deliver(window, Event{DestructionEvent{}});
    if (WindowRecord* around = find_window(record->parent))
        std::erase(around->children, window);
    Slot& slot = *find_slot(window);
    slot.record.reset();
    table.free.push_back(static_cast<std::uint32_t>(&slot - table.places.data()));
}

void add_surface(WindowRecord& record, PixelUnits units) {
    record.surface = make_owned<Surface>();
    record.surface->window = record.handle;
    record.surface->units = units;
    record.surface->update = [](Window window, const Rect& rect) {
        deliver(window, Event{UpdateEvent{rect}});
        return find_window(window) != nullptr;
    };
}

Surface* find_surface(Window window) {
    const WindowRecord* record = find_window(window);
    return record == nullptr ? nullptr : record->surface.get();
}

Surface* find_fitted_surface(Window window) {
    Surface* surface = find_surface(window);
    if (surface != nullptr && surface->point == 0)
        fit_surface(*surface);
    return surface;
}

Window window_of(const QWidget& widget) {
    return static_cast<Window>(widget.property(k_handle_property).toULongLong());
}

void set_widget(WindowRecord& record, QWidget* widget) {
    record.widget = widget;
    if (record.surface)
        record.surface->widget = widget;
    widget->setProperty(k_handle_property, static_cast<qulonglong>(record.handle));
}

long deliver(Window window, const Event& event) {
    if (find_window(window) == nullptr || hook_consumes(window, event))
        return 0;
    return handle(window, event);
}

void deliver_help(Window window) {
    const Event event{HelpEvent{}};
    if (find_window(window) == nullptr || hook_consumes(window, event))
        return;
    handle(window, event);
    if (const Window task = xvt_win_get_task(); task != window)
        handle(task, event);
}

void xvt_app_set_event_hook(const EventHook& hook) {
    table.hook = hook;
}

} // namespace pellux
