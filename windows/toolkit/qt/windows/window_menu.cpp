#include "windows/toolkit/qt/windows/window_menu.h"

#include "core/os/settings.h"
#include "windows/toolkit/qt/windows/document_frame.h"
#include "windows/toolkit/qt/windows/menu_actions.h"
#include "windows/toolkit/qt/windows/window_table.h"

#include <QMdiArea>

#include <algorithm>
#include <array>

namespace pellux {
namespace {

constexpr std::string_view k_yes = "Yes";

using Frames = QList<QMdiSubWindow*>;

Frames shown_frames(const QMdiArea& area, QMdiArea::WindowOrder order = QMdiArea::CreationOrder) {
    Frames frames = area.subWindowList(order);
    frames.removeIf([&](const QMdiSubWindow* frame) { return !frame->isVisibleTo(&area); });
    return frames;
}

/// Those that take room in the area.
Frames open_frames(const QMdiArea& area, QMdiArea::WindowOrder order = QMdiArea::CreationOrder) {
    Frames frames = shown_frames(area, order);
    frames.removeIf([](const QMdiSubWindow* frame) { return frame->isMinimized(); });
    return frames;
}

void show_neighbour(QMdiArea& area, int step) {
    const Frames frames = shown_frames(area);
    if (frames.empty())
        return;
    const qsizetype active = std::max<qsizetype>(0, frames.indexOf(area.activeSubWindow()));
    show_frame(area, *frames[(active + step + frames.size()) % frames.size()]);
}

/// The active one lies in front, at the lower end.
void cascade(QMdiArea& area) {
    constexpr int k_step_px = 28;
    const QSize room = area.maximumViewportSize();
    const QSize size = room * 2 / 3;
    QPoint corner;
    for (QMdiSubWindow* frame : open_frames(area, QMdiArea::ActivationHistoryOrder)) {
        frame->showNormal();
        frame->setGeometry(QRect(corner, size));
        frame->raise();
        corner += QPoint(k_step_px, k_step_px);
        if (corner.x() + size.width() > room.width() || corner.y() + size.height() > room.height())
            corner = {};
    }
}

bool reads_yes(const char* setting) {
    std::array<char, 8> buffer{};
    std::string_view value;
    return setting != nullptr && read_setting(setting, buffer, value) && value == k_yes;
}

/// What the list calls a frame.
QString title_of(const QMdiSubWindow& frame) {
    const WindowRecord* record = find_window(window_of(*frame.widget()));
    MenuItem item;
    if (record != nullptr)
        item.title = record->title;
    return marked_title(item) + (frame.isWindowModified() ? QStringLiteral("*") : QString());
}

} // namespace

void show_frame(QMdiArea& area, QMdiSubWindow& frame) {
    if (frame.isMinimized())
        frame.showNormal();
    area.setActiveSubWindow(&frame);
}

void activate_before(QMdiArea& area, const QMdiSubWindow& frame) {
    if (area.activeSubWindow() != &frame)
        return;
    Frames frames = open_frames(area, QMdiArea::ActivationHistoryOrder);
    frames.removeIf([&](const QMdiSubWindow* other) {
        const WindowRecord* record =
            other->widget() == nullptr ? nullptr : find_window(window_of(*other->widget()));
        return other == &frame || record == nullptr || record->is_closing;
    });
    if (!frames.empty())
        area.setActiveSubWindow(frames.last());
}

WindowMenu::WindowMenu(QMdiArea& area, const char* tabs_setting)
    : QMenu(QStringLiteral("&Window")), area_(area), tabs_setting_(tabs_setting) {
    add(WindowCommand::next, "&Next", {Qt::CTRL | Qt::Key_Tab, Qt::CTRL | Qt::Key_F6});
    add(WindowCommand::previous, "&Previous",
        {Qt::CTRL | Qt::SHIFT | Qt::Key_Tab, Qt::CTRL | Qt::SHIFT | Qt::Key_F6});
    addSeparator();
    add(WindowCommand::tile, "&Tile");
    add(WindowCommand::cascade, "&Cascade");
    add(WindowCommand::tabs, "&As tabs");
    area.setDocumentMode(true);
    area.setTabsClosable(true);
    area.setTabsMovable(true);
    show_as_tabs(reads_yes(tabs_setting));
    connect(this, &QMenu::aboutToShow, this, [this] {
        update_items();
        list_windows();
    });
    update_items();
}

QAction* WindowMenu::add(WindowCommand command, const char* title,
                         const QList<QKeySequence>& keys) {
    QAction* action = addAction(QLatin1String(title));
    action->setData(static_cast<int>(command));
    action->setShortcuts(keys);
    connect(action, &QAction::triggered, this, [this, command] { run(command); });
    return action;
}

void WindowMenu::run(WindowCommand command) {
    switch (command) {
    case WindowCommand::next:
        show_neighbour(area_, 1);
        return;
    case WindowCommand::previous:
        show_neighbour(area_, -1);
        return;
    case WindowCommand::tile:
        area_.tileSubWindows();
        return;
    case WindowCommand::cascade:
        cascade(area_);
        return;
    case WindowCommand::tabs:
        break;
    }
    const bool as_tabs = area_.viewMode() != QMdiArea::TabbedView;
    show_as_tabs(as_tabs);
    update_items();
    // A setting that can't be written is kept for the run.
    const Setting setting{tabs_setting_ == nullptr ? "" : tabs_setting_, as_tabs ? k_yes : "No"};
    if (tabs_setting_ != nullptr)
        static_cast<void>(write_settings({&setting, 1}));
}

void WindowMenu::show_as_tabs(bool as_tabs) {
    area_.setViewMode(as_tabs ? QMdiArea::TabbedView : QMdiArea::SubWindowView);
}

void WindowMenu::update_items() {
    const Frames frames = shown_frames(area_);
    const bool has_other = frames.size() > 1 || (frames.size() == 1 && frames[0]->isMinimized());
    const bool as_tabs = area_.viewMode() == QMdiArea::TabbedView;
    for (QAction* action : actions()) {
        switch (static_cast<WindowCommand>(action->data().toInt())) {
        case WindowCommand::next:
        case WindowCommand::previous:
            action->setEnabled(has_other);
            break;
        case WindowCommand::tile:
        case WindowCommand::cascade:
            action->setEnabled(!as_tabs && !open_frames(area_).empty());
            break;
        case WindowCommand::tabs:
            show_checked(*action, as_tabs);
            break;
        }
    }
}

void WindowMenu::list_windows() {
    constexpr int k_numbered = 9;
    qDeleteAll(listed_);
    listed_.clear();
    const Frames frames = shown_frames(area_);
    if (!frames.empty())
        listed_.push_back(addSeparator());
    for (int number = 1; QMdiSubWindow * frame : frames) {
        const QString digit = number <= k_numbered ? QStringLiteral("&%1 ").arg(number) : QString();
        QAction* action = addAction(digit + title_of(*frame));
        ++number;
        show_checked(*action, frame == area_.activeSubWindow());
        // The frame may be gone before its item is.
        connect(action, &QAction::triggered, frame, [this, frame] { show_frame(area_, *frame); });
        listed_.push_back(action);
    }
}

} // namespace pellux
