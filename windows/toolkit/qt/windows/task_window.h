#pragma once

#include "windows/toolkit/app.h"
#include "windows/toolkit/geometry.h"

#include <QMainWindow>

#include <memory>
#include <optional>

class QMdiArea;

namespace pellux {

class WindowMenu;

/// The program's frame: the menu bar of the active window, and the area that the windows stand in.
class TaskWindow : public QMainWindow {
public:
    TaskWindow(Window window, const AppConfig& config);
    ~TaskWindow() override;
    TaskWindow(const TaskWindow&) = delete;
    TaskWindow& operator=(const TaskWindow&) = delete;

    [[nodiscard]] QMdiArea& area() const { return *area_; }
    /// The size of the area where it needs no scroll bars.
    [[nodiscard]] QSize room() const;
    /// Takes the place of the frame, which may not be known before the window is shown.
    void place(const Rect& client);
    /// The windows in the area, or their states, have changed.
    void update_window_menu();
    /// Fills the menu bar from the active window's menus, or the task's.
    void show_menus();

    /// The window whose menus are shown.
    [[nodiscard]] Window menu_owner() const;

protected:
    void closeEvent(QCloseEvent* event) override;
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void mend_place();
    void set_ground();

    Window window_;
    int help_menu_;
    QMdiArea* area_;
    std::unique_ptr<WindowMenu> window_menu_;
    Window shown_menus_ = Window::none; ///< whose menus the bar holds
    /// Given before the frame was known, which then counted as nothing.
    std::optional<QSize> outer_wanted_;
};

/// Null without a task window.
[[nodiscard]] TaskWindow* task_window();
void set_task_window(TaskWindow* window);

} // namespace pellux
