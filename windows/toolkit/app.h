#pragma once

#include "windows/toolkit/event.h"

#include <span>
#include <string_view>

namespace pellux {

struct AppConfig {
    int menu_bar = 0;  ///< resource of the task window's menus
    int about_box = 0; ///< resource of a dialog; the toolkit's own item under the menu `help_menu`
    int help_menu = 0; ///< tag
    const char* base_name = "";
    const char* name = "";
    const char* task_title = "";
    /// Name of the user's setting that keeps "As tabs" of the Window menu; null: kept for the run.
    const char* tabs_setting = nullptr;
    int mark = 0; ///< picture of the program, in window frames
};

/// Brings the toolkit up, before anything may show a box. `arguments` are the program's, kept.
void xvt_app_start(int& argument_count, char** arguments);
/// Takes the toolkit down again, at the program's end.
void xvt_app_end();
/// Makes the task window, sends it the creation event, and runs until the application is destroyed.
/// Answers the program's exit status.
int xvt_app_create(const AppConfig& config, EventHandler task_handler);
/// Ends the application: all windows go, the task window last, and `xvt_app_create` returns.
void xvt_app_destroy();
/// Answers a quit query: the session may end.
void xvt_app_allow_quit();
/// Handles the events that wait.
void xvt_app_process_pending_events();

/// Sees every event before its window does, and may consume it.
struct EventHook {
    bool (*consumes)(void* context, Window window, const Event& event) = nullptr;
    void* context = nullptr;
};
/// Puts one in place of the one before.
void xvt_app_set_event_hook(const EventHook& hook);

} // namespace pellux
