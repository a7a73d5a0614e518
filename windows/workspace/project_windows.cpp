#include "windows/workspace/project_windows.h"

#include "core/diagnostics/message.h"
#include "core/project/project_state.h"
#include "windows/controls/help_topics.h"
#include "windows/controls/toolbar.h"
#include "windows/toolkit/resource.h"
#include "windows/toolkit/window.h"
#include "windows/workspace/messages.h"
#include "windows/workspace/move_frame.h"
#include "windows/workspace/open_projects.h"
#include "windows/workspace/project_commands.h"
#include "windows/workspace/project_files.h"
#include "windows/workspace/project_font.h"
#include "windows/workspace/project_info.h"
#include "windows/workspace/project_menus.h"
#include "windows/workspace/project_view.h"
#include "windows/workspace/text_window.h"

#include <algorithm>
#include <array>
#include <span>

namespace pellux {
namespace {

constexpr int k_project_window = 105;

constexpr std::array k_windows{WindowResource{.number = k_project_window,
                                              .title = "",
                                              .width = 560,
                                              .height = 400,
                                              .menu_bar = k_project_menu_bar}};

void on_command(Window window, int tag) {
    enter_project(window);
    if (!run_project_command(window, tag))
        workspace().shell.run_tool(workspace().shell.context, tag);
}

/// A button of the toolbar; the list has the focus again afterwards.
void on_button(Window window, int button) {
    xvt_vobj_set_focus(project_list(window));
    if (const int tag = command_of_button(button); tag != 0)
        on_command(window, tag);
}

void on_list(Window window, ControlAction action) {
    if (action == ControlAction::selected)
        update_project_commands(window);
}

void on_drop(Window window, std::span<const String> paths) {
    const Vector<String> files = open_projects_among(paths);
    enter_project(window);
    if (!files.empty())
        add_dropped_files(window, files);
}

long on_event(void*, Window window, const Event& event) {
    if (event.get<CreationEvent>() != nullptr) {
        create_project_view(window);
        associate_help({.window = window}, HelpTopic::project_window);
    } else if (event.get<SizeEvent>() != nullptr) {
        lay_out_project_view(window);
    } else if (const auto* focus = event.get<FocusEvent>(); focus != nullptr && focus->gained) {
        if (OpenProject* open = find_open_project(window))
            look_at_sources(window, *open->project, open->looks);
        update_info_commands(window);
        xvt_vobj_set_focus(project_list(window));
    } else if (const auto* timer = event.get<TimerEvent>()) {
        if (OpenProject* open = find_open_project(window))
            continue_looking(window, timer->timer, *open->project, open->looks);
    } else if (const auto* command = event.get<CommandEvent>()) {
        on_command(window, command->tag);
    } else if (const auto* notice = event.get<NoticeEvent>()) {
        if (notice->number == k_toolbar_notice)
            on_button(window, notice->part_id);
    } else if (const auto* control = event.get<ControlEvent>()) {
        on_list(window, control->action);
    } else if (const auto* menu = event.get<ContextMenuEvent>()) {
        show_list_menu(window, menu->at);
    } else if (const auto* drop = event.get<DropEvent>()) {
        on_drop(window, drop->paths);
    } else if (event.get<ClipboardEvent>() != nullptr) {
        update_project_commands(window);
    } else if (const auto* key = event.get<CharacterEvent>()) {
        enter_project(window);
        return run_project_key(window, *key) ? 0 : 1;
    } else if (event.get<CloseEvent>() != nullptr) {
        enter_project(window);
        close_project(window);
    } else if (event.get<DestructionEvent>() != nullptr) {
        close_text_windows(window);
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
    register_text_windows();
}

Window create_project_window(const Project& project) {
    const Window window = xvt_win_create_res(k_project_window, {on_event, nullptr});
    if (window == Window::none)
        return window;
    show_project_name(window, project);
    restore_place(window, project.window);
    show_list_font(window, project);
    workspace().shell.insert_tools_menu(workspace().shell.context, window);
    return window;
}

void show_project_change(Window window) {
    const OpenProject* open = find_open_project(window);
    if (open == nullptr)
        return;
    show_project_status(window, *open->project);
    xvt_vobj_set_modified(window, project_image(*open->project) != open->written);
    update_project_commands(window);
    update_info_commands(window);
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
