#include "windows/toolkit/app.h"

#include "core/os/loop.h"
#include "windows/toolkit/menu_resource.h"
#include "windows/toolkit/qt/boxes/about.h"
#include "windows/toolkit/qt/boxes/ask_boxes.h"
#include "windows/toolkit/qt/draw/pictures.h"
#include "windows/toolkit/qt/draw/theme.h"
#include "windows/toolkit/qt/loop.h"
#include "windows/toolkit/qt/session_end.h"
#include "windows/toolkit/qt/text_conversion.h"
#include "windows/toolkit/qt/windows/clipboard.h"
#include "windows/toolkit/qt/windows/task_window.h"
#include "windows/toolkit/qt/windows/window_table.h"
#include "windows/toolkit/window.h"

#include <QApplication>
#include <QEvent>
#include <QSessionManager>

#include <clocale>
#include <memory>
#include <utility>

namespace pellux {
namespace {

struct AppState {
    /// Ours until `xvt_app_end`. When the display is gone Qt calls exit() from inside the loop, and
    /// nothing may end the application under it then.
    QApplication* application = nullptr;
    bool is_quit_allowed = false;
    bool is_running = false; ///< the desktop's loop is
};
AppState app;

QIcon program_icon(int mark) {
    constexpr int k_sizes_px[] = {16, 32, 48};
    QIcon icon;
    for (const int size_px : k_sizes_px)
        icon.addPixmap(picture(mark, size_px, ImageLook::normal));
    return icon;
}

} // namespace

void xvt_app_start(int& argument_count, char** arguments) {
    app.application = new QApplication(argument_count, arguments);
    // Numbers in our files and messages have a point, whatever the user's language.
    std::setlocale(LC_NUMERIC, "C");
    QApplication::setQuitOnLastWindowClosed(false);
    apply_theme();
    install_qt_loop();
    install_ask(qt_ask());
    QObject::connect(app.application, &QGuiApplication::commitDataRequest,
                     [](QSessionManager& session) {
                         if (!session_may_end())
                             session.cancel();
                     });
}

void xvt_app_end() {
    install_ask({});
    remove_qt_loop();
    delete std::exchange(app.application, nullptr);
}

int xvt_app_create(const AppConfig& config, EventHandler task_handler) {
    QCoreApplication::setApplicationName(to_qstring(config.name));
    QGuiApplication::setDesktopFileName(to_qstring(config.base_name));
    set_about_box(config.about_box, config.name);
    if (config.mark != 0)
        QApplication::setWindowIcon(program_icon(config.mark));

    WindowRecord& record = add_window(WindowKind::task, Window::none);
    const Window task = record.handle;
    record.handler = task_handler;
    if (const MenuBarResource* bar = xvt_res_get_menu_bar(config.menu_bar))
        record.menus = make_owned<Vector<MenuItem>>(menu_tree(*bar));
    const auto window = std::make_unique<TaskWindow>(task, config);
    set_widget(record, window.get());
    set_task_window(window.get());
    xvt_vobj_set_title(task, config.task_title);
    window->show_menus();
    tell_of_clipboard(*window);

    int status = 0;
    deliver(task, Event{CreationEvent{}});
    if (find_window(task) != nullptr) {
        window->show();
        app.is_running = true;
        status = QApplication::exec();
        app.is_running = false;
    }
    xvt_app_destroy();
    set_task_window(nullptr);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return status;
}

void xvt_app_destroy() {
    TaskWindow* task = task_window();
    if (task == nullptr || find_window(window_of(*task)) == nullptr)
        return;
    remove_window(window_of(*task));
    task->hide();
    if (app.is_running)
        QCoreApplication::exit(0);
}

void xvt_app_allow_quit() {
    app.is_quit_allowed = true;
}

bool session_may_end() {
    TaskWindow* task = task_window();
    if (task == nullptr)
        return true;
    app.is_quit_allowed = false;
    deliver(window_of(*task), Event{QuitEvent{true}});
    if (!app.is_quit_allowed)
        return false;
    if (find_window(window_of(*task)) != nullptr)
        deliver(window_of(*task), Event{QuitEvent{false}});
    return true;
}

void xvt_app_process_pending_events() {
    run_turn(TurnWait::none);
}

} // namespace pellux
