#pragma once

#include "windows/toolkit/event.h"

#include <QMdiSubWindow>

namespace pellux {

/// A window's frame in the area.
///
/// Its place is that of the frame when it is neither minimised nor fills the area: it stays what it
/// is meanwhile, and the frame goes back there.
class DocumentFrame : public QMdiSubWindow {
public:
    DocumentFrame(QWidget* parent, Window window);

    [[nodiscard]] Window window() const { return window_; }
    [[nodiscard]] QRect place() const;
    /// Of the client area, in the area too.
    [[nodiscard]] QRect client_place() const;
    void move_client(const QRect& client);

protected:
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    Window window_;
    bool is_away_ = false; ///< minimised, or it fills the area
    QRect place_;          ///< while it is away
    QMargins thickness_;   ///< the same
};

} // namespace pellux
