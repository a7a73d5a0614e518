#include "windows/toolkit/qt/windows/document_frame.h"

#include "windows/toolkit/qt/windows/window_table.h"

#include <QAction>
#include <QCloseEvent>
#include <QMenu>

namespace pellux {

DocumentFrame::DocumentFrame(QWidget* parent, Window window)
    : QMdiSubWindow(parent), window_(window) {
    // The rest of its keys would take those of the windows' own menus away.
    const QKeySequence close(Qt::CTRL | Qt::Key_F4);
    for (QAction* action : systemMenu()->actions()) {
        action->setShortcuts(action->shortcuts().contains(close) ? QList{close}
                                                                 : QList<QKeySequence>());
        // "Stay on Top", which is not remembered.
        if (action->isCheckable())
            action->setVisible(false);
    }
}

QRect DocumentFrame::place() const {
    return is_away_ ? place_ : geometry();
}

QRect DocumentFrame::client_place() const {
    return is_away_ ? place_ - thickness_ : widget()->geometry().translated(pos());
}

void DocumentFrame::move_client(const QRect& client) {
    if (is_away_) {
        place_ = client + thickness_;
        return;
    }
    const QPoint corner = widget()->pos();
    setGeometry(QRect(client.topLeft() - corner, client.size() + size() - widget()->size()));
}

void DocumentFrame::changeEvent(QEvent* event) {
    // One change of the state may come as several events, each with a state of before of its own.
    const bool goes = isMinimized() || isMaximized();
    if (event->type() == QEvent::WindowStateChange && widget() != nullptr && goes && !is_away_) {
        place_ = geometry();
        const QRect inner = widget()->geometry();
        thickness_ = QMargins(inner.left(), inner.top(), width() - inner.right() - 1,
                              height() - inner.bottom() - 1);
        is_away_ = true;
    }
    QMdiSubWindow::changeEvent(event);
    if (is_away_ && !isMinimized() && !isMaximized()) {
        is_away_ = false;
        setGeometry(place_);
    }
}

void DocumentFrame::closeEvent(QCloseEvent* event) {
    if (find_window(window_) == nullptr) {
        QMdiSubWindow::closeEvent(event);
        return;
    }
    event->ignore();
    deliver(window_, Event{CloseEvent{}});
}

} // namespace pellux
