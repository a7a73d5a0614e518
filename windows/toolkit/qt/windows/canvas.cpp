#include "windows/toolkit/qt/windows/canvas.h"

#include "windows/toolkit/qt/windows/context_menu.h"
#include "windows/toolkit/qt/windows/input_method.h"
#include "windows/toolkit/qt/windows/keys.h"
#include "windows/toolkit/qt/windows/places.h"
#include "windows/toolkit/qt/windows/wheel.h"
#include "windows/toolkit/qt/windows/window_table.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QInputMethod>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QStyleHints>
#include <QTimer>
#include <QWheelEvent>

#include <utility>

namespace pellux {
namespace {

PointerButton pointer_button(Qt::MouseButtons buttons) {
    return buttons.testFlag(Qt::LeftButton)     ? PointerButton::left
           : buttons.testFlag(Qt::RightButton)  ? PointerButton::right
           : buttons.testFlag(Qt::MiddleButton) ? PointerButton::middle
                                                : PointerButton::none;
}

} // namespace

Canvas::Canvas(QWidget* parent, Window window, bool takes_tab)
    : QWidget(parent), window_(window), takes_tab_(takes_tab) {
    setMouseTracking(true);
    if (find_surface(window) != nullptr) {
        setAttribute(Qt::WA_OpaquePaintEvent);
        setAttribute(Qt::WA_NoSystemBackground);
    }
}

void Canvas::tell(const Event& event) {
    deliver(window_, event);
}

Point Canvas::place(const QMouseEvent& event) const {
    const WindowRecord* record = find_window(window_);
    return record == nullptr ? Point{} : to_units(*record, event.position());
}

bool Canvas::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride && claims(static_cast<QKeyEvent&>(*event))) {
        event->accept();
        return true;
    }
    // The window may be on a screen with other pixels now.
    if (event->type() == QEvent::ScreenChangeInternal) {
        QTimer::singleShot(0, this, [this] {
            take_size();
            take_theme();
        });
    }
    if (takes_tab_ && event->type() == QEvent::KeyPress) {
        auto& key = static_cast<QKeyEvent&>(*event);
        if (key.key() == Qt::Key_Tab || key.key() == Qt::Key_Backtab) {
            keyPressEvent(&key);
            return true;
        }
    }
    return QWidget::event(event);
}

void Canvas::paintEvent(QPaintEvent* event) {
    if (Surface* surface = find_surface(window_))
        paint_surface(*surface, *event);
}

void Canvas::resizeEvent(QResizeEvent*) {
    take_size();
}

void Canvas::take_size() {
    Rect client{0, 0, height(), width()};
    if (Surface* surface = find_surface(window_)) {
        fit_surface(*surface);
        const Point end = to_units(*surface, QPointF(width(), height()));
        client.right = end.x;
        client.bottom = end.y;
    }
    tell(Event{SizeEvent{client.right, client.bottom}});
}

void Canvas::take_theme() {
    tell(Event{ThemeEvent{}});
    if (Surface* surface = find_surface(window_))
        renew_surface(*surface);
}

void Canvas::press(const QMouseEvent& event, int clicks) {
    pressed_at_ = event.pos();
    // What is composed stands where the caret is, which may go elsewhere now.
    if (is_composing_)
        QGuiApplication::inputMethod()->commit();
    tell(Event{PointerDownEvent{place(event), pointer_button(event.button()),
                                modifiers(event.modifiers()), clicks}});
}

void Canvas::mousePressEvent(QMouseEvent* event) {
    const qint64 since = static_cast<qint64>(event->timestamp()) - double_click_ms_;
    const bool is_third =
        double_click_ms_ != 0 &&
        since < QGuiApplication::styleHints()->mouseDoubleClickInterval() &&
        (event->pos() - pressed_at_).manhattanLength() < QApplication::startDragDistance();
    double_click_ms_ = 0;
    press(*event, is_third ? 3 : 1);
}

void Canvas::mouseDoubleClickEvent(QMouseEvent* event) {
    double_click_ms_ = static_cast<qint64>(event->timestamp());
    press(*event, 2);
}

void Canvas::mouseReleaseEvent(QMouseEvent* event) {
    tell(Event{PointerUpEvent{place(*event), pointer_button(event->button()),
                              modifiers(event->modifiers())}});
}

void Canvas::mouseMoveEvent(QMouseEvent* event) {
    tell(Event{PointerMoveEvent{place(*event), pointer_button(event->buttons()),
                                modifiers(event->modifiers())}});
}

void Canvas::leaveEvent(QEvent*) {
    tell(Event{PointerLeaveEvent{}});
}

bool Canvas::claims(const QKeyEvent& event) const {
    // Help is about the window that has the focus, not the menu's command.
    if (event.key() == Qt::Key_F1)
        return true;
    const Vector<CharacterEvent> keys = character_events(event);
    return hasFocus() && !keys.empty() && deliver(window_, Event{KeyClaimEvent{keys[0]}}) == 1;
}

void Canvas::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_F1) {
        deliver_help(window_);
        return;
    }
    bool is_used = false;
    const Vector<CharacterEvent> keys = character_events(*event);
    for (const CharacterEvent& key : keys)
        is_used = deliver(window_, Event{key}) == 0 || is_used;
    // Otherwise the key comes from a control, which may have shown a menu of its own.
    if (!is_used && hasFocus() && asks_for_menu(*event)) {
        ask_for_menu(window_, QRectF(rect()).center(), 0);
        is_used = true;
    }
    event->setAccepted(is_used);
}

void Canvas::contextMenuEvent(QContextMenuEvent* event) {
    // Some desktops make such an event of a key as well, which has come as a key press.
    if (const WindowRecord* record = find_window(window_);
        record != nullptr && event->reason() != QContextMenuEvent::Keyboard)
        ask_for_menu(window_, event->pos(), control_at(*record, event->pos()));
    event->accept();
}

QVariant Canvas::inputMethodQuery(Qt::InputMethodQuery query) const {
    const QVariant answer = answer_input_method(window_, query);
    return answer.isValid() ? answer : QWidget::inputMethodQuery(query);
}

void Canvas::end_composition() {
    if (std::exchange(is_composing_, false))
        tell(Event{CompositionEvent{}});
}

void Canvas::inputMethodEvent(QInputMethodEvent* event) {
    if (!testAttribute(Qt::WA_InputMethodEnabled)) {
        event->ignore();
        return;
    }
    const bool is_composing = !event->preeditString().isEmpty();
    if (!is_composing || !event->commitString().isEmpty())
        end_composition();
    tell_typed(window_, event->commitString());
    if (is_composing) {
        is_composing_ = true;
        tell_composed(window_, *event);
    }
    event->accept();
}

void Canvas::wheelEvent(QWheelEvent* event) {
    const WindowRecord* record = find_window(window_);
    const WheelEvent wheel = record == nullptr ? WheelEvent{} : wheel_event(*record, *event);
    const bool is_used = record != nullptr && record->handler.handle != nullptr &&
                         (wheel.right != 0 || wheel.down != 0) &&
                         deliver(window_, Event{wheel}) == 0;
    event->setAccepted(is_used);
}

void Canvas::focusInEvent(QFocusEvent*) {
    tell(Event{FocusEvent{true}});
}

void Canvas::focusOutEvent(QFocusEvent*) {
    end_composition();
    tell(Event{FocusEvent{false}});
}

void Canvas::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    const QEvent::Type type = event->type();
    if (type != QEvent::PaletteChange && type != QEvent::FontChange && type != QEvent::StyleChange)
        return;
    take_theme();
}

} // namespace pellux
