#include "core/common/callback.h"
#include "tests/windows/toolkit/application.h"
#include "tests/windows/toolkit/robot.h"
#include "windows/toolkit/menu.h"
#include "windows/toolkit/qt/draw/theme.h"
#include "windows/toolkit/qt/windows/task_window.h"
#include "windows/toolkit/qt/windows/window_table.h"
#include "windows/toolkit/resource.h"
#include "windows/toolkit/window.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>

#include <string>

namespace pellux {
namespace {

constexpr WindowResource k_windows[] = {{7180, "____", 300, 200}};
constexpr MenuResource k_items[] = {{.tag = 1, .title = "&Do"}};
constexpr MenuResource k_menus[] = {{.tag = 2, .title = "&File", .items = k_items}};
constexpr MenuBarResource k_bars[] = {{7180, k_menus}};
const bool k_is_registered = [] {
    xvt_res_register({.menu_bars = k_bars, .windows = k_windows});
    return true;
}();

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
        const Window window = xvt_win_create_res(7180, {});
        process_events();
        QWidget& frame = *find_window(window)->widget->parentWidget();
        const QImage shown = frame.grab().toImage();
        const QRgb ground = task_window()->area().background().color().rgb();
        for (const QPoint edge : {QPoint(0, 100), QPoint(shown.width() - 1, 100), QPoint(0, 15),
                                  QPoint(150, shown.height() - 1)})
            EXPECT_GT(contrast_of(shown.pixel(edge), ground), 1.5) << edge.x() << ' ' << edge.y();

        const int middle = shown.width() / 2;
        EXPECT_EQ(light_rows(shown.copy(middle - 40, 4, 80, 18)), 1) << "the line has a shadow";

        const MenuItem items[] = {{.tag = 1, .title = "Item"}, {.tag = 2, .title = "Item"}};
        xvt_menu_popup(window, items, {10, 10});
        const QImage menu = QApplication::activePopupWidget()->grab().toImage();
        EXPECT_GT(contrast_of(menu.pixel(0, 20), menu.pixel(3, 20)), 1.5);
        press_key("Esc");
        xvt_vobj_destroy(window);
    });
    QApplication::setPalette(before);
}

TEST(MenuBar, ShowsThatItHasTheKeysAndGivesThemBack) {
    in_application(
        [] {
            std::string told;
            const Window window =
                xvt_win_create_res(7180, {[](void* context, Window, const Event& event) -> long {
                                              if (const auto* key = event.get<CharacterEvent>())
                                                  from_context<std::string>(context) +=
                                                      std::to_string(key->code) + " ";
                                              return 0;
                                          },
                                          &told});
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
            EXPECT_EQ(told, "407 127 407 ");
            xvt_vobj_destroy(window);
        },
        {.menu_bar = 7180});
}

} // namespace
} // namespace pellux
