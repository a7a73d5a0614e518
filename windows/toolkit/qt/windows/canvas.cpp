#include "windows/toolkit/qt/windows/canvas.h"

#include "windows/toolkit/qt/windows/context_menu.h"
#include "windows/toolkit/qt/windows/places.h"
#include "windows/toolkit/qt/windows/window_table.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QStyleHints>
#include <QTimer>

#include <array>
#include <utility>

namespace pellux {
namespace {

Modifiers modifiers(Qt::KeyboardModifiers held) {
    return {held.testFlag(Qt::ShiftModifier), held.testFlag(Qt::ControlModifier),
            held.testFlag(Qt::AltModifier)};
}

PointerButton pointer_button(Qt::MouseButtons buttons) {
    return buttons.testFlag(Qt::LeftButton)     ? PointerButton::left
           : buttons.testFlag(Qt::RightButton)  ? PointerButton::right
           : buttons.testFlag(Qt::MiddleButton) ? PointerButton::middle
                                                : PointerButton::none;
}

constexpr int k_tab = 9;

constexpr std::array k_keys{
    std::pair{Qt::Key_Backspace, 8},
    std::pair{Qt::Key_Tab, k_tab},
    std::pair{Qt::Key_Backtab, k_tab},
    std::pair{Qt::Key_Return, 13},
    std::pair{Qt::Key_Enter, 13},
    std::pair{Qt::Key_Escape, 27},
    std::pair{Qt::Key_Delete, 127},
    std::pair{Qt::Key_Up, static_cast<int>(KeyCode::up)},
    std::pair{Qt::Key_Down, static_cast<int>(KeyCode::down)},
    std::pair{Qt::Key_Right, static_cast<int>(KeyCode::right)},
    std::pair{Qt::Key_Left, static_cast<int>(KeyCode::left)},
    std::pair{Qt::Key_PageUp, static_cast<int>(KeyCode::page_up)},
    std::pair{Qt::Key_PageDown, static_cast<int>(KeyCode::page_down)},
    std::pair{Qt::Key_Home, static_cast<int>(KeyCode::home)},
    std::pair{Qt::Key_End, static_cast<int>(KeyCode::end)},
    std::pair{Qt::Key_Insert, static_cast<int>(KeyCode::insert)},
    std::pair{Qt::Key_Copy, static_cast<int>(KeyCode::copy)},
    std::pair{Qt::Key_Cut, static_cast<int>(KeyCode::cut)},
    std::pair{Qt::Key_Paste, static_cast<int>(KeyCode::paste)},
    std::pair{Qt::Key_Find, static_cast<int>(KeyCode::find)},
    std::pair{Qt::Key_Menu, static_cast<int>(KeyCode::context_menu)},
};

bool is_modifier(int key) {
    return (key >= Qt::Key_Shift && key <= Qt::Key_ScrollLock) || key == Qt::Key_AltGr ||
           key == Qt::Key_Super_L || key == Qt::Key_Super_R;
}

} // namespace

CharacterEvent character_event(const QKeyEvent& event) {
    CharacterEvent character{0, modifiers(event.modifiers())};
    const int key = event.key();
    constexpr int k_function_keys = 12;
    if (is_modifier(key)) {
        character.code = -1;
        return character;
    }
    for (const auto& [known, code] : k_keys) {
        if (key == known) {
            character.code = code;
            return character;
        }
    }
    if (key >= Qt::Key_F1 && key < Qt::Key_F1 + k_function_keys)
        character.code = static_cast<int>(KeyCode::function_1) + (key - Qt::Key_F1);
    else if (character.with.control && !character.with.alt && key >= Qt::Key_A && key <= Qt::Key_Z)
        character.code = key - Qt::Key_A + 1;
    else if (const QString text = event.text(); text.size() == 1 && text[0].unicode() <= 0xFF)
        character.code = text[0].unicode();
    return character;
}

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
    // Help is about the window that has the focus, not the menu's command.
    if (event->type() == QEvent::ShortcutOverride &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_F1)
        event->accept();
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

void Canvas::keyPressEvent(QKeyEvent* event) {
    const CharacterEvent character = character_event(*event);
    if (character.code < 0) {
        event->ignore();
    } else if (event->key() == Qt::Key_F1) {
        deliver_help(window_);
    } else {
        bool is_used = deliver(window_, Event{character}) == 0;
        // Otherwise the key comes from a control, which may have shown a menu of its own.
        if (!is_used && hasFocus() && asks_for_menu(*event)) {
            ask_for_menu(window_, QRectF(rect()).center(), 0);
            is_used = true;
        }
        event->setAccepted(is_used);
    }
}

void Canvas::contextMenuEvent(QContextMenuEvent* event) {
    // Some desktops make such an event of a key as well, which has come as a key press.
    if (const WindowRecord* record = find_window(window_);
        record != nullptr && event->reason() != QContextMenuEvent::Keyboard)
        ask_for_menu(window_, event->pos(), control_at(*record, event->pos()));
    event->accept();
}

void Canvas::focusInEvent(QFocusEvent*) {
    tell(Event{FocusEvent{true}});
}

void Canvas::focusOutEvent(QFocusEvent*) {
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
