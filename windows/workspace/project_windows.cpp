#include "windows/workspace/project_windows.h"

#include "core/diagnostics/message.h"
#include "windows/toolkit/resource.h"
#include "windows/toolkit/window.h"
#include "windows/workspace/messages.h"
#include "windows/workspace/move_frame.h"
#include "windows/workspace/new_project.h"
#include "windows/workspace/open_projects.h"
#include "windows/workspace/project_menus.h"

#include <algorithm>
#include <array>

namespace pellux {
namespace {

constexpr int k_project_window = 105;

constexpr std::array k_windows{WindowResource{.number = k_project_window,
                                              .title = "",
                                              .width = 480,
                                              .height = 320,
                                              .menu_bar = k_project_menu_bar}};

struct CommandRow {
    ProjectCommand command;
    void (*run)(Window window);
};
constexpr CommandRow k_commands[] = {
    {ProjectCommand::new_project, [](Window) { ask_for_new_project(); }},
    {ProjectCommand::open, [](Window) { choose_project(); }},
    {ProjectCommand::close, [](Window window) { close_project(window); }},
    {ProjectCommand::save, [](Window window) { save_project(window); }},
    {ProjectCommand::quit, [](Window) { workspace().shell.quit(workspace().shell.context); }},
    {ProjectCommand::help_contents,
     [](Window) { workspace().shell.show_help_contents(workspace().shell.context); }},
};

void on_command(Window window, int tag) {
    enter_project(window);
    for (const CommandRow& row : k_commands) {
        if (static_cast<int>(row.command) == tag) {
            row.run(window);
            return;
        }
    }
    workspace().shell.run_tool(workspace().shell.context, tag);
}

long on_event(void*, Window window, const Event& event) {
    if (const auto* command = event.get<CommandEvent>()) {
        on_command(window, command->tag);
    } else if (event.get<CloseEvent>() != nullptr) {
        enter_project(window);
        close_project(window);
    } else if (event.get<DestructionEvent>() != nullptr) {
        forget_project(window);
    }
    return 0;
}

/// Moves the window to its stored place, if some of that can be seen. What a damaged file says must
/// not make a window that no memory suffices for.
void restore_place(Window window, const Screen_position& stored) {
    constexpr int k_far = 1 << 15;
    for (const int coordinate : {stored.top, stored.left, stored.bottom, stored.right})
        if (coordinate < -k_far || coordinate > k_far)
            return;
    Rect place{stored.top, stored.left, stored.bottom, stored.right};
    const Rect area = xvt_vobj_get_client_rect(xvt_win_get_task());
    place.bottom = std::min(place.bottom, place.top + height(area));
    place.right = std::min(place.right, place.left + width(area));
    if (!is_empty(place) && meets(place, area))
        move_frame(window, place);
}

} // namespace

void register_project_window() {
    xvt_res_register({.menu_bars = project_menu_bars(), .windows = k_windows});
}

Window create_project_window(const Project& project) {
    const Window window = xvt_win_create_res(k_project_window, {on_event, nullptr});
    if (window == Window::none)
        return window;
    show_project_name(window, project);
    restore_place(window, project.window);
    workspace().shell.insert_tools_menu(workspace().shell.context, window);
    return window;
}

void show_project_name(Window window, const Project& project) {
    xvt_vobj_set_title(window, view(format_message(msg_project_title, project.file_name.c_str())));
}

void store_place(Window window, Project& project) {
    const Rect place = xvt_vobj_get_outer_rect(window);
    if (is_empty(place) || xvt_vobj_is_maximized(window))
        return;
    project.window.top = place.top;
    project.window.left = place.left;
    project.window.bottom = place.bottom;
    project.window.right = place.right;
}

} // namespace pellux
