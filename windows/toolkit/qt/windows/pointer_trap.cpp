#include "windows/toolkit/qt/windows/keys.h"
#include "windows/toolkit/qt/windows/places.h"
#include "windows/toolkit/qt/windows/window_table.h"
#include "windows/toolkit/window.h"

#include <QApplication>
#include <QCursor>
#include <QEvent>

namespace pellux {
namespace {

/// The window that has the pointer.
Window trapped_by = Window::none;

/// Lets go of the pointer: its destructor does, and tells the window unless it let go itself.
void end_trap(Window window) {
    if (WindowRecord* record = find_window(window))
        record->trap.reset();
}

/// Holds the pointer as long as it lives, and sees to it that this is not for longer than may be.
class PointerTrap : public QObject {
public:
    PointerTrap(Window window, QWidget& widget) : window_(window), widget_(&widget) {
        trapped_by = window;
        widget.grabMouse();
        qApp->installEventFilter(this);
    }
    ~PointerTrap() override {
        trapped_by = Window::none;
        qApp->removeEventFilter(this);
        if (widget_ != nullptr)
            widget_->releaseMouse();
        if (tells)
            tell();
    }
    PointerTrap(const PointerTrap&) = delete;
    PointerTrap& operator=(const PointerTrap&) = delete;

    bool tells = true;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (ends_at(*watched, *event))
            end_trap(window_); // and with it this object
        return false;
    }

private:
    [[nodiscard]] bool ends_at(const QObject& watched, const QEvent& event) const {
        const QEvent::Type type = event.type();
        if (type == QEvent::ApplicationStateChange)
            return QGuiApplication::applicationState() != Qt::ApplicationActive;
        if (type == QEvent::Show)
            return watched.isWidgetType() &&
                   static_cast<const QWidget&>(watched).windowType() == Qt::Popup;
        if (&watched == widget_)
            return type == QEvent::Hide || (type == QEvent::EnabledChange && !widget_->isEnabled());
        if (widget_ == nullptr || &watched != widget_->window())
            return false;
        return type == QEvent::WindowBlocked || type == QEvent::WindowDeactivate ||
               (type == QEvent::WindowStateChange && widget_->window()->isMinimized());
    }

    void tell() const {
        const WindowRecord* record = find_window(window_);
        if (record == nullptr || widget_ == nullptr)
            return;
        const Point at = to_units(*record, widget_->mapFromGlobal(QPointF(QCursor::pos())));
        deliver(window_, Event{PointerUpEvent{at, PointerButton::none,
                                              modifiers(QGuiApplication::keyboardModifiers())}});
    }

    Window window_;
    QPointer<QWidget> widget_;
};

} // namespace

void xvt_win_trap_pointer(Window window) {
    WindowRecord* record = find_window(window);
    const bool may_trap =
        record != nullptr && !record->is_closing && record->widget != nullptr &&
        (record->kind == WindowKind::pane || record->kind == WindowKind::document) &&
        record->widget->isVisible() && record->widget->isEnabled() &&
        QApplication::activeModalWidget() == nullptr &&
        QApplication::activePopupWidget() == nullptr;
    if (!may_trap || trapped_by == window)
        return;
    end_trap(trapped_by);
    // It may have done anything when it was told.
    record = find_window(window);
    if (record != nullptr && record->widget != nullptr && trapped_by == Window::none)
        record->trap = std::make_unique<PointerTrap>(window, *record->widget);
}

void xvt_win_release_pointer(Window window) {
    WindowRecord* record = find_window(window);
    if (record == nullptr || !record->trap)
        return;
    static_cast<PointerTrap&>(*record->trap).tells = false;
    record->trap.reset();
}

bool xvt_win_has_pointer(Window window) {
    return window != Window::none && window == trapped_by;
}

} // namespace pellux
