#pragma once

#include "windows/toolkit/event.h"

#include <QWidget>

namespace pellux {

/// The client area of a window or pane: turns the desktop's events into ours, and shows the
/// window's surface where it has one.
class Canvas : public QWidget {
public:
    Canvas(QWidget* parent, Window window, bool takes_tab);

    [[nodiscard]] QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;

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
    void inputMethodEvent(QInputMethodEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void tell(const Event& event);
    void end_composition();
    void take_size();
    void take_theme();
    void press(const QMouseEvent& event, int clicks);
    /// Whether the window wants the key before it is a shortcut.
    [[nodiscard]] bool claims(const QKeyEvent& event) const;
    [[nodiscard]] Point place(const QMouseEvent& event) const;

    Window window_;
    bool takes_tab_;
    bool is_composing_ = false; ///< the window shows a text that an input method composes
    /// Of the last press, so that a third one soon after a double click counts as such.
    QPoint pressed_at_;
    qint64 double_click_ms_ = 0;
};

} // namespace pellux
