#include "windows/app/resources.h"

#include "windows/app/start_picture.h"
#include "windows/controls/boxes.h"
#include "windows/controls/pictures.h"
#include "windows/controls/shell_hooks.h"
#include "windows/toolkit/resource.h"

#include <array>

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

constexpr std::array k_windows{WindowResource{.number = k_start_picture_window,
                                              .title = "Pellux",
                                              .width = 480,
                                              .height = 180,
                                              .is_resizable = false,
                                              .draws = true}};

constexpr std::array k_about_rows{
    DialogRowResource{1, DialogRowKind::text, "Pellux", 0},
    DialogRowResource{2, DialogRowKind::text, "Version " PELLUX_VERSION, 0},
    DialogRowResource{3, DialogRowKind::text,
                      "An environment for writing, compiling and simulating VHDL designs.", 0},
};
constexpr std::array k_about_buttons{k_ok};
constexpr std::array k_dialogs{
    DialogResource{k_about_box, "About Pellux", k_about_rows, k_about_buttons}};

} // namespace

void register_app_resources() {
    xvt_res_register({.menu_bars = k_menu_bars, .windows = k_windows, .dialogs = k_dialogs});
}

AppConfig app_config() {
    return {.menu_bar = k_menu_bar,
            .about_box = k_about_box,
            .help_menu = k_help_menu,
            .base_name = "pellux",
            .name = "Pellux",
            .task_title = "Pellux",
            .mark = static_cast<int>(Picture::program)};
}

} // namespace pellux
