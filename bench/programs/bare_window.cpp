#include "bench/programs/first_paint.h"

#include <QListWidget>
#include <QMenuBar>

// The yardstick of a start: a window with a menu bar and a list, and nothing else.
int main(int argument_count, char** arguments) {
    QApplication application(argument_count, arguments);
    pellux::end_at_first_paint();
    QMainWindow window;
    for (const char* title : {"&Project", "&Files", "&Help"}) {
        QMenu* menu = window.menuBar()->addMenu(title);
        for (const char* item : {"&New...", "&Open...", "&Quit"})
            menu->addAction(item);
    }
    auto* list = new QListWidget;
    list->addItems({"counter.vhd", "counter_pkg.vhd", "counter_tb.vhd"});
    window.setCentralWidget(list);
    window.resize(1100, 800);
    window.show();
    return QApplication::exec();
}
