#include "windows/workspace/project_windows.h"

#include "windows/compile/compile_window.h"
#include "windows/controls/help_topics.h"
#include "windows/controls/status_bar.h"
#include "windows/controls/toolbar.h"
#include "windows/toolkit/control.h"
#include "windows/toolkit/window.h"
#include "windows/workspace/device_dialog.h"
#include "windows/workspace/file_options.h"
#include "windows/workspace/new_project.h"
#include "windows/workspace/open_projects.h"
#include "windows/workspace/project_closing.h"
#include "windows/workspace/project_commands.h"
#include "windows/workspace/project_compile.h"
#include "windows/workspace/project_editors.h"
#include "windows/workspace/project_files.h"
#include "windows/workspace/project_frame.h"
#include "windows/workspace/project_info.h"
#include "windows/workspace/project_menus.h"
#include "windows/workspace/project_opening.h"
#include "windows/workspace/project_options.h"
#include "windows/workspace/project_view.h"
#include "windows/workspace/reading_window.h"
#include "windows/workspace/recovery_window.h"
#include "windows/workspace/search_question.h"
#include "windows/workspace/search_window.h"

#include <span>

namespace pellux {
namespace {

void on_command(Window window, int tag) {
    enter_project(window);
    if (!run_project_command(window, tag))
        shell().run_tool(shell().context, tag);
}

/// A button of the toolbar; the list has the focus again afterwards.
void on_button(Window window, int button) {
    xvt_vobj_set_focus(project_list(window));
    if (const int tag = command_of_button(button); tag != 0)
        on_command(window, tag);
}

void on_device_field(Window window) {
    xvt_vobj_set_focus(project_list(window));
    on_command(window, static_cast<int>(ProjectCommand::device));
}

void on_list(Window window, ControlAction action) {
    if (action == ControlAction::selected)
        update_project_commands(window);
    else if (action == ControlAction::chosen)
        on_command(window, static_cast<int>(ProjectCommand::source_file));
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
            look_at_sources(project_list(window), *open->project, open->looks);
        update_info_commands(window);
        update_project_commands(window);
        xvt_vobj_set_focus(project_list(window));
    } else if (const auto* timer = event.get<TimerEvent>()) {
        OpenProject* open = find_open_project(window);
        if (open != nullptr && !on_auto_save_timer(window, timer->timer))
            continue_looking(project_list(window), timer->timer, *open->project, open->looks);
    } else if (const auto* command = event.get<CommandEvent>()) {
        on_command(window, command->tag);
    } else if (const auto* notice = event.get<NoticeEvent>()) {
        if (notice->number == k_toolbar_notice)
            on_button(window, notice->part_id);
        else if (notice->number == k_status_notice)
            on_device_field(window);
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
        close_reading_windows(window);
        destroy_compile_window(window);
        close_search_windows(window);
        forget_project(window);
        show_project_names();
    }
    return event.type() == EventType::wheel ? 1 : 0;
}

void update(Window window, bool has_changed) {
    update_project_commands(window);
    update_history_titles(window);
    update_info_commands(window);
    if (has_changed)
        update_auto_save(window);
}

bool on_text_key(Window project, const CharacterEvent& key) {
    enter_project(project);
    return run_compile_key(project, key);
}

} // namespace

void start_workspace(const ShellHooks& hooks) {
    install_shell(hooks);
    workspace() = {};
    workspace().hooks = {{on_event, nullptr}, update};
    register_project_window();
    register_reading_windows(on_text_key);
    start_compiling({.run_command = run_project_command,
                     .can_run = can_run_project_command,
                     .take_key = on_text_key});
    register_search_windows(on_text_key);
    register_search_question();
    start_editors(on_text_key);
    register_new_project();
    register_project_options();
    register_file_options();
    register_device_dialog();
    register_recovery_window();
}

} // namespace pellux
