#include "tests/windows/toolkit/robot.h"

#include "core/os/loop.h"
#include "tests/windows/toolkit/application.h"
#include "windows/toolkit/qt/session_end.h"
#include "windows/toolkit/qt/text_conversion.h"
#include "windows/toolkit/qt/windows/task_window.h"
#include "windows/toolkit/qt/windows/window_table.h"

#include <QAccessible>
#include <QApplication>
#include <QDropEvent>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QListView>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QTest>
#include <QTextBrowser>
#include <QTimer>
#include <QUrl>
#include <QWheelEvent>
#include <QWindow>

namespace pellux {
namespace {

QWidget* widget_at(Window window) {
    const WindowRecord* record = find_window(window);
    return record == nullptr ? nullptr : record->widget.data();
}

/// The window of the program that lies in front of all; null while none is active.
QWidget* front_window() {
    if (QWidget* popup = QApplication::activePopupWidget())
        return popup;
    if (QWidget* modal = QApplication::activeModalWidget())
        return modal;
    return QApplication::activeWindow();
}

QWidget* focus_widget() {
    QWidget* front = front_window();
    if (front == nullptr)
        return task_window();
    return front->focusWidget() != nullptr ? front->focusWidget() : front;
}

/// The pane with a text that has the focus, else the one that was made last; null while there is
/// none.
const WindowRecord* last_text() {
    const QWidget* focus = focus_widget();
    const WindowRecord* last = focus == nullptr ? nullptr : find_window(window_of(*focus));
    if (last != nullptr && last->text_access)
        return last;
    last = nullptr;
    if (const TaskWindow* task = task_window())
        for (const QWidget* widget : task->findChildren<QWidget*>())
            if (const WindowRecord* record = find_window(window_of(*widget));
                record != nullptr && record->text_access && record->widget == widget &&
                (last == nullptr || record->handle > last->handle))
                last = record;
    return last;
}

/// A place in the window as one in its widget, in logical pixels.
QPoint logical(Window window, Point at) {
    const WindowRecord* record = find_window(window);
    const bool is_device =
        record != nullptr && record->surface && record->surface->units == PixelUnits::device;
    const double ratio = is_device ? record->widget->devicePixelRatioF() : 1;
    return {static_cast<int>(at.x / ratio), static_cast<int>(at.y / ratio)};
}

QAction* find_action(const QList<QAction*>& actions, int tag) {
    for (QAction* action : actions) {
        if (action->menu() != nullptr) {
            if (QAction* found = find_action(action->menu()->actions(), tag))
                return found;
        } else if (!action->isSeparator() && action->data().isValid() &&
                   action->data().toInt() == tag) {
            return action;
        }
    }
    return nullptr;
}

/// The desktop's window that a window is in; the place becomes one of it.
QWindow* desktop_window(Window window, Point at, QPoint& place) {
    QWidget* widget = widget_at(window);
    if (widget == nullptr)
        return nullptr;
    place = widget->mapTo(widget->window(), logical(window, at));
    return widget->window()->windowHandle();
}

void point_at(Window window, Point at, QTest::MouseAction action,
              Qt::MouseButton button = Qt::LeftButton) {
    QPoint place;
    if (QWindow* target = desktop_window(window, at, place))
        QTest::mouseEvent(action, target, button, {}, place);
    process_events();
}

bool is_copy(const QDropEvent& event) {
    return event.isAccepted() && event.dropAction() == Qt::CopyAction;
}

void list_actions(const QList<QAction*>& actions, int depth, std::string& list) {
    for (const QAction* action : actions) {
        list += std::string(static_cast<std::size_t>(depth) * 2, ' ');
        if (action->isSeparator()) {
            list += "-\n";
            continue;
        }
        std::string title = action->text().toStdString();
        if (!action->shortcut().isEmpty())
            title += "\t" + action->shortcut().toString(QKeySequence::PortableText).toStdString();
        if (action->isChecked())
            title = "*" + title;
        list += (action->isEnabled() ? title : "(" + title + ")") + "\n";
        if (action->menu() != nullptr)
            list_actions(action->menu()->actions(), depth + 1, list);
    }
}

QWidget* frame_of(Window window) {
    const WindowRecord* record = find_window(window);
    QWidget* widget = record == nullptr ? nullptr : record->widget.data();
    return widget != nullptr && record->kind == WindowKind::document ? widget->parentWidget()
                                                                     : widget;
}

} // namespace

void press_key(std::string_view key) {
    const QKeySequence sequence(to_qstring(key), QKeySequence::PortableText);
    QWidget* focus = focus_widget();
    if (sequence.isEmpty() || focus == nullptr)
        return;
    const QKeyCombination combination = sequence[0];
    QTest::keyClick(focus, combination.key(), combination.keyboardModifiers());
    process_events();
}

void type_text(std::string_view text) {
    for (const char c : text) {
        QWidget* focus = focus_widget();
        if (focus == nullptr)
            return;
        const QString typed = QString::fromLatin1(&c, 1);
        const int code = typed[0].toUpper().unicode();
        for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QKeyEvent event(type, code, Qt::NoModifier, typed);
            QApplication::sendEvent(focus, &event);
        }
        process_events();
    }
}

void compose(std::string_view typed, std::string_view composed, int caret) {
    QInputMethodEvent event(to_qstring(composed), {{QInputMethodEvent::Cursor, caret, 1, {}}});
    event.setCommitString(to_qstring(typed));
    QApplication::sendEvent(focus_widget(), &event);
    process_events();
}

void turn_wheel(Window window, const WheelEvent& wheel) {
    QPoint place;
    QWindow* target = desktop_window(window, wheel.at, place);
    const QPoint moved(-wheel.right, -wheel.down);
    // With Alt the desktop exchanges the axes.
    const QPoint told = wheel.with.alt ? moved.transposed() : moved;
    const Qt::KeyboardModifiers with = (wheel.with.shift ? Qt::ShiftModifier : Qt::NoModifier) |
                                       (wheel.with.control ? Qt::ControlModifier : Qt::NoModifier) |
                                       (wheel.with.alt ? Qt::AltModifier : Qt::NoModifier);
    QWheelEvent event(place, target->mapToGlobal(place), wheel.is_by_pixels ? told : QPoint(), told,
                      Qt::NoButton, with, Qt::NoScrollPhase, false);
    // Only such a one goes on to the widgets around.
    QSpontaneKeyEvent::setSpontaneous(&event);
    qApp->notify(target, &event);
    process_events();
}

void press_pointer(Window window, Point at) {
    point_at(window, at, QTest::MousePress);
}

void release_pointer(Window window, Point at) {
    point_at(window, at, QTest::MouseRelease);
}

void move_pointer(Window window, Point at) {
    point_at(window, at, QTest::MouseMove);
}

void click(Window window, Point at) {
    point_at(window, at, QTest::MouseClick);
}

void double_click(Window window, Point at) {
    point_at(window, at, QTest::MouseDClick);
}

void right_click(Window window, Point at) {
    point_at(window, at, QTest::MouseClick, Qt::RightButton);
}

void middle_click(Window window, Point at) {
    point_at(window, at, QTest::MouseClick, Qt::MiddleButton);
}

bool drop_files(Window window, Point at, std::span<const std::string> paths) {
    std::string list;
    for (const std::string& path : paths) {
        const QByteArray bytes(path.data(), static_cast<qsizetype>(path.size()));
        list += "file://" + bytes.toPercentEncoding("/").toStdString() + "\r\n";
    }
    return drop_data(window, at, "text/uri-list", list);
}

bool drop_data(Window window, Point at, const char* type, std::string_view data) {
    QMimeData dragged;
    dragged.setData(type, QByteArray(data.data(), static_cast<qsizetype>(data.size())));
    QPoint place;
    QWindow* target = desktop_window(window, at, place);
    const auto actions = Qt::CopyAction | Qt::MoveAction;
    QDragEnterEvent enter(place, actions, &dragged, Qt::LeftButton, {});
    QCoreApplication::sendEvent(target, &enter);
    QDragMoveEvent move(place, actions, &dragged, Qt::LeftButton, {});
    QCoreApplication::sendEvent(target, &move);
    if (!is_copy(enter) || !is_copy(move)) {
        QDragLeaveEvent leave;
        QCoreApplication::sendEvent(target, &leave);
        return false;
    }
    QDropEvent dropped(place, actions, &dragged, Qt::LeftButton, {});
    QCoreApplication::sendEvent(target, &dropped);
    process_events();
    return is_copy(dropped);
}

bool choose_item(int tag) {
    TaskWindow* task = task_window();
    QAction* action = task == nullptr ? nullptr : find_action(task->menuBar()->actions(), tag);
    if (action == nullptr || !action->isEnabled())
        return false;
    action->trigger();
    process_events();
    return true;
}

std::string shown_menus() {
    std::string list;
    if (TaskWindow* task = task_window())
        list_actions(task->menuBar()->actions(), 0, list);
    return list;
}

std::string shown_popup() {
    std::string list;
    if (const auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget()))
        list_actions(menu->actions(), 0, list);
    return list;
}

void in_box(const std::function<void()>& act) {
    constexpr int k_wait_ms = 1;
    QTimer::singleShot(k_wait_ms, [act] {
        const QWidget* box = QApplication::activeModalWidget();
        if (box == nullptr || QApplication::activeWindow() != box)
            in_box(act);
        else
            act();
    });
}

std::string shown_text() {
    const WindowRecord* pane = last_text();
    if (pane == nullptr)
        return {};
    const TextAccess& access = *pane->text_access;
    const String text = access.copy(access.context, 0, access.size(access.context));
    return {text.begin(), text.end()};
}

Window shown_text_window() {
    const WindowRecord* pane = last_text();
    return pane == nullptr ? Window::none : pane->parent;
}

std::string spoken_entry(Window list, int index) {
    const QAccessibleInterface* about = QAccessible::queryAccessibleInterface(widget_at(list));
    const QAccessibleInterface* entry = about == nullptr ? nullptr : about->child(index);
    return entry == nullptr ? "" : entry->text(QAccessible::Name).toStdString();
}

int first_shown_entry(Window list) {
    const auto* view = widget_of<QListView>(list);
    return view == nullptr ? -1 : view->indexAt({2, 2}).row();
}

std::string spoken(Window window) {
    const QAccessibleInterface* about = QAccessible::queryAccessibleInterface(widget_at(window));
    if (about == nullptr)
        return {};
    const QAccessible::Role role = about->role();
    std::string text = role == QAccessible::CheckBox    ? "check box"
                       : role == QAccessible::Button    ? "button"
                       : role == QAccessible::ToolBar   ? "tool bar"
                       : role == QAccessible::StatusBar ? "status bar"
                                                        : std::to_string(role);
    text += " '" + about->text(QAccessible::Name).toStdString() + "'";
    const QAccessible::State state = about->state();
    const std::pair<bool, const char*> words[] = {{state.checked, " checked"},
                                                  {state.checkStateMixed, " mixed"},
                                                  {state.pressed, " pressed"},
                                                  {state.disabled, " disabled"}};
    for (const auto& [is_so, word] : words)
        text += is_so ? word : "";
    return text;
}

bool press_by_voice(Window window) {
    QAccessibleInterface* about = QAccessible::queryAccessibleInterface(widget_at(window));
    QAccessibleActionInterface* actions = about == nullptr ? nullptr : about->actionInterface();
    if (actions == nullptr || actions->actionNames().isEmpty())
        return false;
    actions->doAction(actions->actionNames().first());
    process_events();
    return true;
}

std::string shown_help_page() {
    for (const QWidget* widget : QApplication::topLevelWidgets())
        if (const auto* page = widget->findChild<const QTextBrowser*>("help_page"))
            return page->source().toString().section(u'/', -1).toStdString();
    return {};
}

void close_by_frame(Window window) {
    if (QWidget* frame = frame_of(window))
        frame->close();
    process_events();
}

void minimise_by_frame(Window window) {
    if (QWidget* frame = frame_of(window))
        frame->showMinimized();
    process_events();
}

bool end_session() {
    const bool may_end = session_may_end();
    process_events();
    return may_end;
}

bool wait_for_text(std::string_view words) {
    constexpr int k_turns_max = 100'000;
    for (int i = 0; i < k_turns_max && shown_text().find(words) == std::string::npos; ++i)
        run_turn(TurnWait::until_event);
    return shown_text().find(words) != std::string::npos;
}

std::uint32_t shown_pixel(Window window, Point at) {
    const QImage shown = widget_at(window)->grab().toImage();
    return shown.pixel(logical(window, at) * shown.devicePixelRatio()) & 0xFFFFFF;
}

std::vector<std::uint32_t> shown_pixels(Window window) {
    const QImage shown = widget_at(window)->grab().toImage().convertToFormat(QImage::Format_RGB32);
    const auto* first = reinterpret_cast<const std::uint32_t*>(shown.constBits());
    return {first, first + shown.sizeInBytes() / static_cast<qsizetype>(sizeof *first)};
}

bool save_front_picture(std::string_view path) {
    QWidget* front = front_window();
    const bool is_saved = front != nullptr && front->grab().save(to_qstring(path), "PNG");
    if (QWidget* popup = QApplication::activePopupWidget())
        popup->close();
    return is_saved;
}

bool save_picture(Window window, std::string_view path) {
    QWidget* shown = frame_of(window);
    return shown != nullptr && shown->grab().save(to_qstring(path), "PNG");
}

} // namespace pellux
