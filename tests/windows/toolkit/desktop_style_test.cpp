#include "tests/windows/toolkit/application.h"
#include "tests/windows/toolkit/event_log.h"
#include "tests/windows/toolkit/robot.h"
#include "windows/toolkit/menu.h"
#include "windows/toolkit/qt/draw/theme.h"
#include "windows/toolkit/qt/windows/task_window.h"
#include "windows/toolkit/qt/windows/window_table.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QMdiArea>
#include <QMdiSubWindow>

namespace pellux {
namespace {

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
