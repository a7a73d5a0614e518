#include "windows/toolkit/qt/boxes/about.h"

#include "windows/toolkit/dialog.h"

#include <QCoreApplication>
#include <QMenu>

namespace pellux {
namespace {

struct AboutBox {
    int dialog = 0;
    QString name;
};
AboutBox about_box;

void show_about_box() {
    Dialog dialog;
    if (xvt_dlg_create_res(dialog, about_box.dialog))
        static_cast<void>(xvt_dlg_ask(dialog));
}

} // namespace

void set_about_box(int dialog, const char* name) {
    about_box = {dialog, QString::fromUtf8(name)};
}

void add_about(QMenu& menu) {
    if (about_box.dialog == 0)
        return;
    menu.addSeparator();
    QAction* action = menu.addAction(QStringLiteral("&About %1...").arg(about_box.name));
    action->setMenuRole(QAction::AboutRole);
    QObject::connect(action, &QAction::triggered, QCoreApplication::instance(), show_about_box,
                     Qt::QueuedConnection);
}

} // namespace pellux
