#include "windows/app/task_window.h"

#include "core/common/callback.h"
#include "windows/app/messages.h"
#include "windows/app/start_picture.h"
#include "windows/controls/boxes.h"
#include "windows/controls/help_topics.h"
#include "windows/controls/pictures.h"
#include "windows/controls/shell_hooks.h"
#include "windows/toolkit/resource.h"
#include "windows/toolkit/window.h"
#include "windows/workspace/new_project.h"
#include "windows/workspace/open_projects.h"
#include "windows/workspace/project_opening.h"
#include "windows/workspace/recovery_window.h"

#include <array>
#include <utility>

namespace pellux {
namespace {

constexpr int k_menu_bar = 1000;
constexpr int k_about_box = 118;
constexpr int k_project_menu = 1001;

constexpr MenuResource item(const char* title, TaskCommand command, const char* shortcut) {
    return {static_cast<int>(command), title, {}, shortcut, true};
}

constexpr std::array k_project{
    item("&New...", TaskCommand::new_project, "Ctrl+N"),
    item("&Open...", TaskCommand::open, "Ctrl+O"),
    item("&Quit", TaskCommand::quit, "Ctrl+Q"),
};
constexpr std::array k_help{item("&Contents", TaskCommand::help_contents, "F1")};
constexpr std::array k_menus{
    MenuResource{k_project_menu, "&Project", k_project, nullptr, true},
    MenuResource{k_help_menu, "&Help", k_help, nullptr, true},
};
constexpr std::array k_menu_bars{MenuBarResource{k_menu_bar, k_menus}};

constexpr std::array k_about_rows{
    DialogRowResource{1, DialogRowKind::text, "Pellux", 0},
    DialogRowResource{2, DialogRowKind::text, "Version " PELLUX_VERSION, 0},
    DialogRowResource{3, DialogRowKind::text, "Write, compile and simulate VHDL designs.", 0},
};
constexpr std::array k_about_buttons{k_ok};
constexpr std::array k_dialogs{DialogResource{.number = k_about_box,
                                              .title = "About Pellux",
                                              .rows = k_about_rows,
                                              .buttons = k_about_buttons,
                                              .image = static_cast<int>(Picture::program)}};

/// The least that shows a project's window; logical pixels.
constexpr int k_width_min = 320;
constexpr int k_height_min = 240;

void on_creation(Shell& shell, Window task) {
    xvt_win_set_minimum_size(task, k_width_min, k_height_min);
    xvt_win_accept_drops(task, true);
    xvt_app_set_event_hook(locating_help_hook(shell.help));
    insert_tools_menu(shell.tools, task);
    // From here on the simple hook is in force, in place of the locating one.
    xvt_app_set_event_hook(simple_help_hook(shell.help));
    if (shell.options.opens_projects)
        open_starting_projects(shell);
    else if (show_start_picture(shell) == Window::none)
        post_error(msg_no_picture_window);
    offer_left_work();
}

void on_destruction() {
    xvt_app_set_event_hook({});
    close_help();
}

void on_command(Shell& shell, int tag) {
    switch (static_cast<TaskCommand>(tag)) {
    case TaskCommand::new_project:
        ask_for_new_project();
        return;
    case TaskCommand::open:
        choose_project();
        return;
    case TaskCommand::help_contents:
        show_help_contents();
        return;
    case TaskCommand::quit:
        quit(shell);
        return;
    }
    run_tool(shell.tools, tag);
}

void on_quit(Shell& shell, const QuitEvent& event) {
    if (!event.is_query)
        xvt_app_destroy();
    else if (ask_to_quit(shell))
        xvt_app_allow_quit();
}

/// Where no project is open, other files than projects begin one.
void on_drop(std::span<const String> paths) {
    Vector<String> others = open_projects_among(paths);
    if (workspace().projects.empty() && !others.empty())
        offer_new_project(std::move(others));
}

/// The hook leaves to the program what already names its page.
void on_help(Window task, const Event& event, int topic) {
    if (topic == 0 || !xvt_help_process_event(help_file(), task, event))
        show_help_contents();
}

long on_event(void* context, Window window, const Event& event) {
    auto& shell = from_context<Shell>(context);
    if (event.get<CreationEvent>() != nullptr)
        on_creation(shell, window);
    else if (event.get<DestructionEvent>() != nullptr)
        on_destruction();
    else if (event.get<CloseEvent>() != nullptr && ask_to_quit(shell))
        xvt_app_destroy();
    else if (const auto* command = event.get<CommandEvent>())
        on_command(shell, command->tag);
    else if (const auto* wish = event.get<QuitEvent>())
        on_quit(shell, *wish);
    else if (const auto* drop = event.get<DropEvent>())
        on_drop(drop->paths);
    else if (const auto* help = event.get<HelpEvent>())
        on_help(window, event, help->topic);
    return 0;
}

} // namespace

void register_task_window() {
    xvt_res_register({.menu_bars = k_menu_bars, .dialogs = k_dialogs});
}

AppConfig app_config() {
    return {.menu_bar = k_menu_bar,
            .about_box = k_about_box,
            .help_menu = k_help_menu,
            .base_name = "pellux",
            .name = "Pellux",
            .task_title = "Pellux",
            .tabs_setting = "Tabs",
            .mark = static_cast<int>(Picture::program)};
}

EventHandler task_handler(Shell& shell) {
    return {on_event, &shell};
}

} // namespace pellux
