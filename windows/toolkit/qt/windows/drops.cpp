#include "windows/toolkit/qt/windows/places.h"
#include "windows/toolkit/qt/windows/window_table.h"
#include "windows/toolkit/window.h"

#include <QAbstractScrollArea>
#include <QCoreApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QSysInfo>
#include <QUrl>

#include <utility>

namespace pellux {
namespace {

/// The path of a file on this machine, byte by byte; empty for another address.
String local_path(const QUrl& url) {
    const QString host = url.host();
    const bool is_here = host.isEmpty() || host == QLatin1String("localhost") ||
                         host == QSysInfo::machineHostName().toLower();
    if (!url.isLocalFile() || !is_here)
        return {};
    // Decoded as a text, a name that is no UTF-8 would be lost.
    const QByteArray path =
        QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1());
    if (!path.startsWith('/') || path.contains('\0'))
        return {};
    return {path.constData(), static_cast<std::size_t>(path.size())};
}

Vector<String> local_paths(const QMimeData& data) {
    Vector<String> paths;
    for (const QUrl& url : data.urls())
        if (String path = local_path(url); !path.empty())
            paths.push_back(std::move(path));
    return paths;
}

/// Takes the drags over a widget before it sees them.
class DropTarget : public QObject {
public:
    DropTarget(Window window, QWidget* over) : QObject(over), window_(window), over_(over) {
        over->setAcceptDrops(true);
        over->installEventFilter(this);
    }
    ~DropTarget() override { over_->setAcceptDrops(false); }
    DropTarget(const DropTarget&) = delete;
    DropTarget& operator=(const DropTarget&) = delete;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        const QEvent::Type type = event->type();
        if (type != QEvent::DragEnter && type != QEvent::DragMove && type != QEvent::Drop)
            return QObject::eventFilter(watched, event);
        auto& drag = static_cast<QDropEvent&>(*event);
        if (type != QEvent::DragMove)
            paths_ = local_paths(*drag.mimeData());
        drag.setAccepted(!paths_.empty() && drag.possibleActions().testFlag(Qt::CopyAction));
        if (!drag.isAccepted())
            return true;
        drag.setDropAction(Qt::CopyAction);
        if (type == QEvent::Drop)
            tell(drag.position());
        return true;
    }

private:
    /// Later, so that the program that the files come from need not wait for an answer.
    void tell(QPointF place) {
        const WindowRecord* record = find_window(window_);
        int control = 0;
        if (record != nullptr && record->kind == WindowKind::control) {
            control = record->id;
            record = find_window(record->parent);
        }
        if (record == nullptr || record->widget == nullptr)
            return;
        place = over_->mapTo(record->widget.data(), place);
        if (control == 0)
            control = control_at(*record, place);
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [window = record->handle, paths = std::exchange(paths_, {}),
             at = to_units(*record, place), control] {
                deliver(window, Event{DropEvent{paths, at, control}});
            },
            Qt::QueuedConnection);
    }

    Window window_;
    QWidget* over_;
    Vector<String> paths_; ///< of the drag that is over the widget
};

} // namespace

void xvt_win_accept_drops(Window window, bool accepts) {
    const WindowRecord* record = find_window(window);
    if (record == nullptr || record->widget == nullptr)
        return;
    const auto* area = qobject_cast<QAbstractScrollArea*>(record->widget.data());
    QWidget* over = area == nullptr ? record->widget.data() : area->viewport();
    for (QObject* child : over->children())
        if (auto* target = dynamic_cast<DropTarget*>(child)) {
            if (!accepts)
                delete target;
            return;
        }
    if (accepts)
        new DropTarget(window, over);
}

} // namespace pellux
