#include "tests/support/temporary_directory.h"
#include "tests/windows/toolkit/application.h"
#include "tests/windows/toolkit/event_log.h"
#include "tests/windows/toolkit/robot.h"
#include "windows/toolkit/menu.h"
#include "windows/toolkit/qt/draw/theme.h"
#include "windows/toolkit/qt/windows/task_window.h"
#include "windows/toolkit/qt/windows/window_menu.h"
#include "windows/toolkit/qt/windows/window_table.h"
#include "windows/toolkit/window.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>

#include <string>
#include <vector>

namespace pellux {
namespace {

/// Three windows, of which "c" is the active one.
struct Three {
    static inline const std::set<EventType> k_told{EventType::character};
    LoggedWindow each[3]{LoggedWindow(k_told), LoggedWindow(k_told), LoggedWindow(k_told)};
    Window windows[3]{each[0].window, each[1].window, each[2].window};

    Three() {
        for (int i = 0; i < 3; ++i)
            xvt_vobj_set_title(windows[i], std::string(1, static_cast<char>('a' + i)));
        process_events();
    }
    /// Those that a key is told to.
    std::string with_keys() {
        for (LoggedWindow& log : each)
            log.take();
        press_key("X");
        std::string names;
        for (int i = 0; i < 3; ++i)
            if (each[i].take() == "key 120; ")
                names += static_cast<char>('a' + i);
        return names;
    }
    [[nodiscard]] std::vector<Rect> places() const {
        return {xvt_vobj_get_outer_rect(windows[0]), xvt_vobj_get_outer_rect(windows[1]),
                xvt_vobj_get_outer_rect(windows[2])};
    }
};

void choose(WindowCommand command) {
    EXPECT_TRUE(choose_item(static_cast<int>(command))) << static_cast<int>(command);
}

TEST(WindowMenu, LeadsToEveryWindowAndTheOneBefore) {
    in_application(
        [] {
            Three three;
            const std::pair<const char*, const char*> rows[] = {{"Ctrl+Tab", "a"},
                                                                {"Ctrl+F6", "b"},
                                                                {"Ctrl+Shift+Tab", "a"},
                                                                {"Ctrl+Shift+F6", "c"}};
            for (const auto& [key, name] : rows) {
                press_key(key);
                EXPECT_EQ(three.with_keys(), name) << key;
            }
            xvt_vobj_set_modified(three.windows[0], true);
            press_key("Alt+W");
            EXPECT_TRUE(shown_popup().ends_with("\n-\n&1 a*\n&2 b\n*&3 c\n")) << shown_popup();
            press_key("2");
            EXPECT_EQ(three.with_keys(), "b");
            minimise_by_frame(three.windows[1]);
            EXPECT_EQ(three.with_keys(), "c") << "a minimised one keeps the keys";
            xvt_vobj_raise(three.windows[0]);
            xvt_vobj_destroy(three.windows[0]);
            process_events();
            EXPECT_EQ(three.with_keys(), "c") << "not the one before";
            minimise_by_frame(three.windows[2]);
            xvt_vobj_destroy(three.windows[1]);
            process_events();
            press_key("Ctrl+Tab");
            EXPECT_EQ(three.with_keys(), "c") << "a minimised one that is alone does not come back";
        },
        {.menu_bar = k_test_menu_bar});
}

TEST(WindowMenu, ArrangesAndKeepsThePlacesOfBefore) {
    in_application(
        [] {
            Three three;
            const std::vector<Rect> before = three.places();
            const auto is_as_before = [&] { return three.places() == before; };
            minimise_by_frame(three.windows[0]);
            xvt_vobj_maximize(three.windows[1]);
            process_events();
            EXPECT_TRUE(is_as_before());
            xvt_vobj_move(three.windows[0], xvt_vobj_get_inner_rect(three.windows[0]));
            choose(WindowCommand::tabs);
            EXPECT_TRUE(is_as_before());
            EXPECT_FALSE(choose_item(static_cast<int>(WindowCommand::tile)));
            press_key("Ctrl+Tab");
            press_key("Ctrl+Tab");
            EXPECT_EQ(three.with_keys(), "a");
            EXPECT_TRUE(is_as_before());
            choose(WindowCommand::tabs);
            for (std::size_t i = 0; i < before.size(); ++i) {
                const QWidget* frame = find_window(three.windows[i])->widget->parentWidget();
                EXPECT_EQ(frame->pos(), QPoint(before[i].left, before[i].top));
                EXPECT_EQ(frame->size(), QSize(width(before[i]), height(before[i])));
            }
            for (const auto command : {WindowCommand::tile, WindowCommand::cascade}) {
                choose(command);
                const std::vector<Rect> places = three.places();
                for (const Rect& place : places) {
                    EXPECT_TRUE(contains(xvt_vobj_get_client_rect(xvt_win_get_task()), place));
                    EXPECT_GT(width(place), 200);
                }
                EXPECT_EQ(meets(places[0], places[1]), command == WindowCommand::cascade);
                EXPECT_EQ(three.with_keys(), "a");
            }
        },
        {.menu_bar = k_test_menu_bar});
}

TEST(WindowMenu, KeepsTabsForTheNextRun) {
    const test::TemporaryDirectory settings;
    const test::ScopedVariable place("XDG_CONFIG_HOME", settings.path().c_str());
    const AppConfig config{.menu_bar = k_test_menu_bar, .tabs_setting = "Tabs"};
    for (const bool as_tabs : {false, true, false})
        in_application(
            [&] {
                EXPECT_EQ(task_window()->area().viewMode() == QMdiArea::TabbedView, as_tabs);
                choose(WindowCommand::tabs);
            },
            config);
}

TEST(MenuBar, ShowsThatItHasTheKeysAndGivesThemBack) {
    in_application(
        [] {
            LoggedWindow logged({EventType::character});
            process_events();
            QMenuBar& bar = *task_window()->menuBar();
            const auto is_shown = [&bar] {
                const QPoint at = bar.actionGeometry(bar.actions()[0]).topLeft() + QPoint(2, 2);
                return bar.grab().toImage().pixel(at) == bar.palette().highlight().color().rgb();
            };
            for (const char* key : {"F7", "Del", "Esc"}) {
                EXPECT_FALSE(is_shown());
                press_key("Alt+F");
                press_key("Esc");
                EXPECT_TRUE(bar.hasFocus() && is_shown());
                press_key(key);
                EXPECT_FALSE(bar.hasFocus()) << key;
            }
            press_key("F7");
            EXPECT_EQ(logged.take(), "key 407; key 127; key 407; ");
        },
        {.menu_bar = k_test_menu_bar});
}

/// The rows of a window's title in which something light stands on its ground.
int light_rows(const QImage& title) {
    int rows = 0;
    for (int y = 0; y < title.height(); ++y) {
        bool is_light = false;
        for (int x = 0; x < title.width(); ++x)
            is_light |= contrast_of(title.pixel(x, y), title.pixel(0, y)) > 1.5;
        rows += is_light ? 1 : 0;
    }
    return rows;
}

TEST(DesktopStyle, PartsDarkFromDarkAndCastsNoShadow) {
    const QPalette before = QApplication::palette();
    QApplication::setPalette(QPalette(QColor(0x36, 0x3A, 0x40), QColor(0x2B, 0x2E, 0x33)));
    in_application([] {
        const LoggedWindow logged({});
        process_events();
        QWidget& frame = *find_window(logged.window)->widget->parentWidget();
        const QImage shown = frame.grab().toImage();
        const QRgb ground = task_window()->area().background().color().rgb();
        for (const QPoint edge : {QPoint(0, 100), QPoint(shown.width() - 1, 100), QPoint(0, 15),
                                  QPoint(150, shown.height() - 1)})
            EXPECT_GT(contrast_of(shown.pixel(edge), ground), 1.5) << edge.x() << ' ' << edge.y();

        const int middle = shown.width() / 2;
        EXPECT_EQ(light_rows(shown.copy(middle - 40, 4, 80, 18)), 1) << "the line has a shadow";

        const MenuItem items[] = {{.tag = 1, .title = "Item"}, {.tag = 2, .title = "Item"}};
        xvt_menu_popup(logged.window, items, {10, 10});
        const QImage menu = QApplication::activePopupWidget()->grab().toImage();
        EXPECT_GT(contrast_of(menu.pixel(0, 20), menu.pixel(3, 20)), 1.5);
        press_key("Esc");
    });
    QApplication::setPalette(before);
}

} // namespace
} // namespace pellux
