#include "windows/toolkit/window.h"

#include "windows/toolkit/menu_resource.h"
#include "windows/toolkit/qt/text_conversion.h"
#include "windows/toolkit/qt/windows/canvas.h"
#include "windows/toolkit/qt/windows/controls.h"
#include "windows/toolkit/qt/windows/document_frame.h"
#include "windows/toolkit/qt/windows/free_place.h"
#include "windows/toolkit/qt/windows/task_window.h"
#include "windows/toolkit/qt/windows/window_menu.h"
#include "windows/toolkit/qt/windows/window_table.h"
#include "windows/toolkit/resource.h"

#include <QGuiApplication>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QScreen>
#include <QTimer>

#include <algorithm>

namespace pellux {
namespace {

Rect to_rect(const QRect& rect) {
    return {rect.top(), rect.left(), rect.top() + rect.height(), rect.left() + rect.width()};
}

QRect to_qrect(const Rect& rect) {
    return {rect.left, rect.top, std::max(0, width(rect)), std::max(0, height(rect))};
}

/// What carries the window's title, and is moved, shown and hidden.
QWidget* frame_of(const WindowRecord& record) {
    if (record.widget == nullptr)
        return nullptr;
    return record.kind == WindowKind::document ? record.widget->parentWidget()
                                               : record.widget.data();
}

QWidget* frame_of(Window window) {
    const WindowRecord* record = find_window(window);
    return record == nullptr ? nullptr : frame_of(*record);
}

/// Null for a window of another kind.
DocumentFrame* document_frame(const WindowRecord* record) {
    const bool is_document = record != nullptr && record->kind == WindowKind::document;
    return is_document ? static_cast<DocumentFrame*>(frame_of(*record)) : nullptr;
}

/// In a document's title "[*]" is the place for the mark of changes, and is doubled where it is
/// not.
void show_title(const WindowRecord& record) {
    const auto mark = QStringLiteral("[*]");
    QString title = to_qstring(view(record.title)).replace(mark, mark + mark);
    if (record.kind == WindowKind::document)
        title += mark;
    frame_of(record)->setWindowTitle(title);
}

void center(QWidget& frame) {
    const QWidget* around = frame.parentWidget();
    if (around == nullptr)
        return;
    const QSize room = around->size() - frame.size();
    frame.move(std::max(0, room.width() / 2), std::max(0, room.height() / 2));
}

/// Among the frames that are there.
void find_place(QWidget& frame, const TaskWindow& task) {
    Vector<QRect> others;
    for (const QMdiSubWindow* other : task.area().subWindowList())
        if (other != &frame && other->isVisibleTo(&task.area()) && !other->isMinimized())
            others.push_back(static_cast<const DocumentFrame*>(other)->place());
    frame.setGeometry(free_place(task.room(), others, frame.size()));
}

} // namespace

Window xvt_win_get_task() {
    TaskWindow* task = task_window();
    return task == nullptr ? Window::none : window_of(*task);
}

Window xvt_win_create_res(int number, EventHandler handler) {
    const WindowResource* resource = xvt_res_get_window(number);
    TaskWindow* task = task_window();
    if (resource == nullptr || task == nullptr)
        return Window::none;
    WindowRecord& record = add_window(WindowKind::document, window_of(*task));
    const Window window = record.handle;
    record.handler = handler;
    if (const MenuBarResource* bar = xvt_res_get_menu_bar(resource->menu_bar))
        record.menus = make_owned<Vector<MenuItem>>(menu_tree(*bar));
    if (resource->draws)
        add_surface(record, resource->units);
    auto* frame = new DocumentFrame(&task->area(), window);
    auto* client = new Canvas(frame, window, false);
    set_widget(record, client);
    client->setFocusPolicy(Qt::StrongFocus);
    frame->setWidget(client);
    record.title = resource->title;
    show_title(record);
    if (!resource->is_resizable) {
        frame->setWindowFlags(Qt::SubWindow | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                              Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint);
        client->setFixedSize(resource->width, resource->height);
        // The area has its size once the task window is shown.
        QTimer::singleShot(0, frame, [frame] { center(*frame); });
    }
    QObject::connect(frame, &QMdiSubWindow::windowStateChanged, task, [task, frame] {
        if (frame->isMinimized())
            activate_before(task->area(), *frame);
        task->update_window_menu();
    });
    task->area().addSubWindow(frame);
    frame->ensurePolished();
    frame->adjustSize();
    frame->move_client(
        QRect(frame->pos() + client->pos(), QSize(resource->width, resource->height)));
    if (resource->is_resizable)
        find_place(*frame, *task);
    deliver(window, Event{CreationEvent{}});
    if (find_window(window) == nullptr)
        return Window::none;
    frame->show();
    task->area().setActiveSubWindow(frame);
    client->setFocus();
    return window;
}

long xvt_win_dispatch_event(Window window, const Event& event) {
    return deliver(window, event);
}

Window xvt_win_get_ctl(Window window, int id) {
    if (const WindowRecord* record = find_window(window)) {
        for (const Window child : record->children)
            if (const WindowRecord* found = find_window(child); found != nullptr && found->id == id)
                return child;
    }
    return Window::none;
}

void xvt_win_set_minimum_size(Window window, int width, int height) {
    if (const WindowRecord* record = find_window(window); record != nullptr && record->widget)
        record->widget->setMinimumSize(std::max(0, width), std::max(0, height));
}

void xvt_win_set_cursor(Window window, CursorShape shape) {
    if (const WindowRecord* record = find_window(window); record != nullptr && record->widget)
        record->widget->setCursor(shape == CursorShape::text ? Qt::IBeamCursor : Qt::ArrowCursor);
}

void xvt_vobj_destroy(Window window) {
    WindowRecord* record = find_window(window);
    if (record == nullptr || record->is_closing)
        return;
    const QPointer<DocumentFrame> document = document_frame(record);
    const QPointer<QWidget> frame = frame_of(*record);
    remove_window(window);
    if (frame == nullptr)
        return;
    TaskWindow* task = task_window();
    if (task != nullptr && document != nullptr)
        activate_before(task->area(), *document);
    // Its own events may be what runs now.
    frame->hide();
    if (task != nullptr && document != nullptr) {
        task->area().removeSubWindow(document);
        task->update_window_menu();
    }
    frame->deleteLater();
}

bool xvt_vobj_is_valid(Window window) {
    return find_window(window) != nullptr;
}

Window xvt_vobj_get_parent(Window window) {
    const WindowRecord* record = find_window(window);
    return record == nullptr ? Window::none : record->parent;
}

Rect xvt_vobj_get_client_rect(Window window) {
    const WindowRecord* record = find_window(window);
    if (record == nullptr || record->widget == nullptr)
        return {};
    const TaskWindow* task = task_window();
    const bool is_task = task != nullptr && record->widget == task;
    const QSize size = is_task ? task->room() : record->widget->size();
    if (!record->surface)
        return {0, 0, size.height(), size.width()};
    const Point end = to_units(*record->surface, QPointF(size.width(), size.height()));
    return {0, 0, end.y, end.x};
}

Rect xvt_vobj_get_outer_rect(Window window) {
    if (const DocumentFrame* document = document_frame(find_window(window)))
        return to_rect(document->place());
    const QWidget* frame = frame_of(window);
    return frame == nullptr ? Rect{} : to_rect(frame->frameGeometry());
}

Rect xvt_vobj_get_inner_rect(Window window) {
    const WindowRecord* record = find_window(window);
    if (record == nullptr || record->widget == nullptr)
        return {};
    const DocumentFrame* document = document_frame(record);
    return to_rect(document == nullptr ? record->widget->geometry() : document->client_place());
}

void xvt_vobj_move(Window window, const Rect& rect) {
    const WindowRecord* record = find_window(window);
    if (record == nullptr || record->widget == nullptr)
        return;
    if (record->kind == WindowKind::task)
        static_cast<TaskWindow&>(*record->widget).place(rect);
    else if (DocumentFrame* document = document_frame(record))
        document->move_client(to_qrect(rect));
    else
        record->widget->setGeometry(to_qrect(rect));
}

void xvt_vobj_show_now(Window window) {
    if (const WindowRecord* record = find_window(window); record != nullptr && record->widget)
        record->widget->repaint();
}

String xvt_vobj_get_title(Window window) {
    const WindowRecord* record = find_window(window);
    if (record == nullptr || record->widget == nullptr)
        return {};
    return record->kind == WindowKind::control ? to_text(control_text(record->widget))
                                               : record->title;
}

void xvt_vobj_set_title(Window window, std::string_view title) {
    WindowRecord* record = find_window(window);
    if (record == nullptr || record->widget == nullptr)
        return;
    if (record->kind == WindowKind::control) {
        set_control_text(record->widget, to_qstring(title));
        return;
    }
    record->title = title;
    show_title(*record);
}

void xvt_vobj_set_modified(Window window, bool is_modified) {
    const WindowRecord* record = find_window(window);
    if (record != nullptr && record->kind == WindowKind::document)
        frame_of(*record)->setWindowModified(is_modified);
}

void xvt_vobj_set_visible(Window window, bool is_visible) {
    if (QWidget* frame = frame_of(window))
        frame->setVisible(is_visible);
}

void xvt_vobj_set_enabled(Window window, bool is_enabled) {
    if (QWidget* frame = frame_of(window))
        frame->setEnabled(is_enabled);
}

bool xvt_vobj_is_enabled(Window window) {
    const QWidget* frame = frame_of(window);
    return frame != nullptr && frame->isEnabled();
}

void xvt_vobj_raise(Window window) {
    const WindowRecord* record = find_window(window);
    QWidget* frame = frame_of(window);
    if (frame == nullptr)
        return;
    if (frame->isMinimized())
        frame->showNormal();
    frame->raise();
    if (record->kind == WindowKind::document)
        task_window()->area().setActiveSubWindow(static_cast<QMdiSubWindow*>(frame));
    else if (record->kind == WindowKind::task)
        frame->activateWindow();
}

void xvt_vobj_set_focus(Window window) {
    const WindowRecord* record = find_window(window);
    if (record == nullptr || record->widget == nullptr)
        return;
    if (record->kind == WindowKind::document || record->kind == WindowKind::task)
        xvt_vobj_raise(window);
    record->widget->setFocus(Qt::OtherFocusReason);
}

bool xvt_vobj_has_focus(Window window) {
    const WindowRecord* record = find_window(window);
    return record != nullptr && record->widget != nullptr && record->widget->hasFocus();
}

void xvt_vobj_maximize(Window window) {
    if (QWidget* frame = frame_of(window))
        frame->setWindowState(frame->windowState() | Qt::WindowMaximized);
}

bool xvt_vobj_is_maximized(Window window) {
    const QWidget* frame = frame_of(window);
    return frame != nullptr && frame->isMaximized();
}

void xvt_vobj_set_tool_tip(Window window, std::string_view text) {
    if (QWidget* frame = frame_of(window))
        frame->setToolTip(tip_text(text));
}

void xvt_vobj_set_name(Window window, std::string_view name) {
    if (const WindowRecord* record = find_window(window); record != nullptr && record->widget)
        record->widget->setAccessibleName(to_qstring(name));
}

Rect xvt_scr_get_work_area() {
    const QScreen* screen = QGuiApplication::primaryScreen();
    return screen == nullptr ? Rect{} : to_rect(screen->availableGeometry());
}

Vector<Rect> xvt_scr_list_screens() {
    Vector<Rect> screens;
    for (const QScreen* screen : QGuiApplication::screens())
        screens.push_back(to_rect(screen->availableGeometry()));
    return screens;
}

} // namespace pellux
