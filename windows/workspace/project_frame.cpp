#include "windows/workspace/project_frame.h"

#include "windows/controls/shell_hooks.h"
#include "windows/controls/window_places.h"
#include "windows/toolkit/resource.h"
#include "windows/toolkit/window.h"
#include "windows/workspace/messages.h"
#include "windows/workspace/project_menus.h"
#include "windows/workspace/project_view.h"

#include <algorithm>
#include <array>

namespace pellux {
namespace {

constexpr int k_project_window = 105;

constexpr std::array k_windows{WindowResource{.number = k_project_window,
                                              .title = "",
                                              .width = 560,
                                              .height = 400,
                                              .menu_bar = k_project_menu_bar}};

/// Where windows can stand in the task window.
Rect room() {
    const Window task = xvt_win_get_task();
    Rect area = xvt_vobj_get_client_rect(task);
    if (xvt_vobj_is_maximized(task)) {
        // The desktop may make it large only later.
        const Rect work = xvt_scr_get_work_area();
        area.bottom = std::max(area.bottom, height(work));
        area.right = std::max(area.right, width(work));
    }
    return area;
}

/// Moves the window to its stored place, if some of that can be seen. What a damaged file says must
/// not make a window that no memory suffices for.
void restore_place(Window window, const Screen_position& stored) {
    constexpr int k_far = 1 << 15;
    for (const int coordinate : {stored.top, stored.left, stored.bottom, stored.right})
        if (coordinate < -k_far || coordinate > k_far)
            return;
    const Rect place{stored.top, stored.left, stored.bottom, stored.right};
    const Rect area = room();
    if (!is_empty(place) && meets(place, area))
        move_frame(window, moved_into(place, area));
}

} // namespace

void register_project_window() {
    xvt_res_register({.menu_bars = project_menu_bars(), .windows = k_windows});
}

Window create_project_window(const Project& project) {
    const Window window = xvt_win_create_res(k_project_window, workspace().hooks.handler);
    if (window == Window::none)
        return window;
    restore_place(window, project.window);
    show_list_font(window, project);
    shell().insert_tools_menu(shell().context, window);
    return window;
}

void show_project_change(Window window) {
    const OpenProject* open = find_open_project(window);
    if (open == nullptr)
        return;
    show_project_status(window, *open->project);
    const bool is_changed = has_changed(*open);
    xvt_vobj_set_modified(window, is_changed);
    workspace().hooks.update(window, is_changed);
}

String project_label(const Project& project) {
    const auto others = std::ranges::count_if(workspace().projects, [&](const auto& open) {
        return open->project->file_name.view() == project.file_name.view();
    });
    if (others < 2)
        return String(project.file_name.view());
    return format_message(msg_name_in_directory, project.file_name.c_str(),
                          project.directory.c_str());
}

void show_project_names() {
    for (const Owned<OpenProject>& open : workspace().projects)
        xvt_vobj_set_title(
            open->window,
            view(format_message(msg_project_title, project_label(*open->project).c_str())));
}

void store_place(OpenProject& open) {
    const Rect place = xvt_vobj_get_outer_rect(open.window);
    if (is_empty(place) || place == open.placed)
        return;
    Screen_position& stored = open.project->window;
    stored.top = place.top;
    stored.left = place.left;
    stored.bottom = place.bottom;
    stored.right = place.right;
}

} // namespace pellux
