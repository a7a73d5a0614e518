#pragma once

#include <QMenu>

class QMdiArea;
class QMdiSubWindow;

namespace pellux {

/// Tags of the Window menu's items; those of the application's own menus are not negative.
enum class WindowCommand : int {
    next = -1,
    previous = -2,
    tile = -3,
    cascade = -4,
    tabs = -5,
};

/// The menu about the windows in the area, which it changes itself: what can be done with all of
/// them, and the list of them.
class WindowMenu : public QMenu {
public:
    /// `tabs_setting` names the user's setting that keeps "As tabs"; null: nothing keeps it.
    WindowMenu(QMdiArea& area, const char* tabs_setting);

    /// Enables what can be done now.
    void update_items();

private:
    QAction* add(WindowCommand command, const char* title, const QList<QKeySequence>& keys = {});
    void list_windows();
    void run(WindowCommand command);
    void show_as_tabs(bool as_tabs);

    QMdiArea& area_;
    const char* tabs_setting_;
    QList<QAction*> listed_;
};

/// Activates a frame, a minimised one back at its place.
void show_frame(QMdiArea& area, QMdiSubWindow& frame);
/// A frame goes: where it is the active one, the one that was so before it is it again.
void activate_before(QMdiArea& area, const QMdiSubWindow& frame);

} // namespace pellux
