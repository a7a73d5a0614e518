#pragma once

#include <QApplication>
#include <QEvent>
#include <QMainWindow>
#include <QTimer>

#include <cstdlib>

namespace pellux {

/// Ends the program, without any clearing up, as soon as its main window has been painted.
class EndAtFirstPaint : public QObject {
protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Paint && qobject_cast<QMainWindow*>(watched) != nullptr)
            QTimer::singleShot(0, [] { std::_Exit(0); });
        return false;
    }
};

inline void end_at_first_paint() {
    QCoreApplication::instance()->installEventFilter(new EndAtFirstPaint);
}

} // namespace pellux
