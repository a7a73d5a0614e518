#pragma once

#include "windows/toolkit/custom_control.h"
#include "windows/toolkit/event.h"
#include "windows/toolkit/menu.h"
#include "windows/toolkit/qt/draw/surface.h"
#include "windows/toolkit/text_access.h"

#include <QPointer>
#include <QWidget>

#include <cstdint>
#include <memory>

namespace pellux {

enum class WindowKind { task, document, pane, control };

/// What the toolkit knows of one window.
struct WindowRecord {
    Window handle = Window::none;
    WindowKind kind = WindowKind::pane;
    QPointer<QWidget> widget; ///< its client area, or the control itself
    Window parent = Window::none;
    int id = 0;
    EventHandler handler;
    String title;                     ///< of all but native controls
    Owned<Surface> surface;           ///< of a window that draws
    Vector<Window> children;          ///< in the order of their making
    Vector<String> properties;        ///< of a custom control
    ControlAccess access;             ///< of a custom control, or a pane with a text
    Owned<TextAccess> text_access;    ///< of a pane that has one
    std::int64_t text_size_told = -1; ///< characters, to assistive technology; -1: never
    Owned<Vector<MenuItem>> menus;    ///< of a window with a menu bar
    Rect text_caret;                  ///< in the window's units
    std::unique_ptr<QObject> trap;    ///< while the pointer is trapped; its end tells the window
    bool is_closing = false;
};

/// The record of a window that is there, else null. It stays where it is until the window goes.
[[nodiscard]] WindowRecord* find_window(Window window);
/// A new record under a handle that was never used before, a child of `parent`.
[[nodiscard]] WindowRecord& add_window(WindowKind kind, Window parent);
/// Takes a record, its children's first, out of the table: each gets its destruction event.
void remove_window(Window window);

/// Sends an event through the application's hook to the window's handler; 0 when the window is
/// gone or the hook took the event.
long deliver(Window window, const Event& event);
/// Sends a help event to the window and, when the hook has not answered it, to the task window.
void deliver_help(Window window);

/// The window whose client area or control a widget is; none for any other widget.
[[nodiscard]] Window window_of(const QWidget& widget);
/// Gives the window an image to draw on, which its widget, set later, shows.
void add_surface(WindowRecord& record, PixelUnits units);
/// The surface of a window that draws, else null.
[[nodiscard]] Surface* find_surface(Window window);
/// The same, fitted to its widget at least once.
[[nodiscard]] Surface* find_fitted_surface(Window window);

/// Makes `widget` the window's.
void set_widget(WindowRecord& record, QWidget* widget);

/// The record's widget as `T`, or null.
template <typename T>
[[nodiscard]] T* widget_of(Window window) {
    WindowRecord* record = find_window(window);
    return record == nullptr ? nullptr : qobject_cast<T*>(record->widget.data());
}

} // namespace pellux
