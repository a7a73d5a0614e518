#pragma once

#include "windows/toolkit/event.h"

#include <QWidget>

namespace pellux {

/// The client area of a window or pane: turns the desktop's events into ours, and shows the
/// window's surface where it has one.
class Canvas : public QWidget {
public:
    Canvas(QWidget* parent, Window window, bool takes_tab);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void tell(const Event& event);
    void take_size();
    void take_theme();
    void press(const QMouseEvent& event, int clicks);
    [[nodiscard]] Point place(const QMouseEvent& event) const;

    Window window_;
    bool takes_tab_;
    /// Of the last press, so that a third one soon after a double click counts as such.
    QPoint pressed_at_;
    qint64 double_click_ms_ = 0;
};

/// A key as a character event; code -1 for a bare modifier.
[[nodiscard]] CharacterEvent character_event(const QKeyEvent& event);

} // namespace pellux
