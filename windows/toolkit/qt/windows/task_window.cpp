#include "windows/toolkit/qt/windows/task_window.h"

#include "windows/toolkit/app.h"
#include "windows/toolkit/qt/windows/canvas.h"
#include "windows/toolkit/qt/windows/document_frame.h"
#include "windows/toolkit/qt/windows/menu_actions.h"
#include "windows/toolkit/qt/windows/window_menu.h"
#include "windows/toolkit/qt/windows/window_table.h"
#include "windows/toolkit/window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QLayout>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QScreen>
#include <QTimer>

namespace pellux {
namespace {

TaskWindow* the_task_window = nullptr;

Window document_of(const QMdiSubWindow* frame) {
    const QWidget* client = frame == nullptr ? nullptr : frame->widget();
    return client == nullptr ? Window::none : window_of(*client);
}

const QMdiSubWindow* frame_around(const QWidget* widget) {
    while (widget != nullptr && qobject_cast<const QMdiSubWindow*>(widget) == nullptr)
        widget = widget->parentWidget();
    return static_cast<const QMdiSubWindow*>(widget);
}

void on_focus_changed(const QWidget* before, const QWidget* now) {
    const QMdiSubWindow* frame = frame_around(now);
    // A window that has the focus itself has told it.
    if (frame != nullptr && frame != frame_around(before) && frame->widget() != now)
        deliver(document_of(frame), Event{FocusEvent{true}});
}

/// Whether a menu bar that has the keyboard's focus has a use for the key.
bool moves_in_menus(const QKeyEvent& event) {
    switch (event.key()) {
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Escape:
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
        return true;
    default:
        return (event.modifiers() & ~Qt::ShiftModifier) != Qt::NoModifier ||
               event.key() == Qt::Key_Alt || (!event.text().isEmpty() && event.text()[0].isPrint());
    }
}

} // namespace

TaskWindow* task_window() {
    return the_task_window;
}

void set_task_window(TaskWindow* window) {
    the_task_window = window;
}

TaskWindow::TaskWindow(Window window, const AppConfig& config)
    : window_(window), help_menu_(config.help_menu), area_(new QMdiArea),
      window_menu_(std::make_unique<WindowMenu>(*area_, config.tabs_setting)) {
    area_->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    area_->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setCentralWidget(area_);
    menuBar()->installEventFilter(this);
    set_ground();
    // Until the application gives it a place.
    if (const QScreen* screen = QGuiApplication::primaryScreen())
        resize(screen->availableSize() * 9 / 10);
    connect(area_, &QMdiArea::subWindowActivated, this, [this] {
        if (menu_owner() != shown_menus_)
            show_menus();
        update_window_menu();
    });
    connect(qApp, &QApplication::focusChanged, this, on_focus_changed);
}

TaskWindow::~TaskWindow() {
    // The area tells of activations while its frames go.
    area_->disconnect(this);
}

Window TaskWindow::menu_owner() const {
    const Window document = document_of(area_->activeSubWindow());
    const WindowRecord* record = find_window(document);
    return record != nullptr && record->menus ? document : window_;
}

void TaskWindow::show_menus() {
    const Window owner = menu_owner();
    shown_menus_ = owner;
    const WindowRecord* record = find_window(owner);
    const bool has_menus = record != nullptr && record->menus;
    fill_menu_bar(*menuBar(), owner, has_menus ? *record->menus : Vector<MenuItem>(),
                  {help_menu_, window_menu_.get()});
}

void TaskWindow::update_window_menu() {
    window_menu_->update_items();
    // The title of a window that fills the area stands in ours, and its mark with it.
    const QMdiSubWindow* active = area_->activeSubWindow();
    setWindowModified(active != nullptr && active->isMaximized() && active->isWindowModified());
}

QSize TaskWindow::room() const {
    // Before it is shown the area has not the size yet that the window will give it.
    if (!isVisible())
        layout()->activate();
    return area_->maximumViewportSize();
}

void TaskWindow::place(const Rect& client) {
    const QRect before = geometry();
    const QRect frame = frameGeometry();
    const QSize size(client.right - client.left, client.bottom - client.top);
    if (isVisible() || frame != before) {
        move(client.left - (before.left() - frame.left()),
             client.top - (before.top() - frame.top()));
        resize(size);
        return;
    }
    move(client.left, client.top);
    resize(size);
    outer_wanted_ = size;
}

void TaskWindow::mend_place() {
    const QSize frame = frameGeometry().size() - geometry().size();
    if (!outer_wanted_ || frame.isEmpty() || isMaximized())
        return;
    // The user may have been quicker.
    if (size() == *outer_wanted_)
        resize(*outer_wanted_ - frame);
    outer_wanted_.reset();
}

void TaskWindow::closeEvent(QCloseEvent* event) {
    event->ignore();
    deliver(window_, Event{CloseEvent{}});
}

void TaskWindow::set_ground() {
    // A shade below the windows that stand on it; dark ones need more of it to be seen.
    const QColor window = palette().window().color();
    const int percent = window.lightness() < 128 ? 135 : 108;
    area_->setBackground(window.darker(percent));
}

bool TaskWindow::eventFilter(QObject* watched, QEvent* event) {
    QMenuBar& bar = *menuBar();
    if (watched != &bar || event->type() != QEvent::KeyPress || !bar.hasFocus())
        return QMainWindow::eventFilter(watched, event);
    const auto& key = static_cast<const QKeyEvent&>(*event);
    if (moves_in_menus(key))
        return false;
    // The bar would keep the focus, and the key: the window that had it before gets both.
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QCoreApplication::sendEvent(&bar, &escape);
    QWidget* focus = QApplication::focusWidget();
    if (focus == nullptr || focus == &bar)
        return false;
    QKeyEvent again(key.type(), key.key(), key.modifiers(), key.text());
    QCoreApplication::sendEvent(focus, &again);
    return true;
}

bool TaskWindow::event(QEvent* event) {
    const QEvent::Type type = event->type();
    if (type == QEvent::PaletteChange)
        set_ground();
    if (outer_wanted_ && (type == QEvent::Show || type == QEvent::Move || type == QEvent::Resize ||
                          type == QEvent::WindowActivate))
        QTimer::singleShot(0, this, [this] { mend_place(); });
    return QMainWindow::event(event);
}

} // namespace pellux
