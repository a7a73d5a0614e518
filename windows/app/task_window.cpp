#include "windows/app/task_window.h"

#include "core/common/callback.h"
#include "windows/app/messages.h"
#include "windows/app/quitting.h"
#include "windows/app/resources.h"
#include "windows/app/start_picture.h"
#include "windows/app/starting_projects.h"
#include "windows/controls/boxes.h"
#include "windows/toolkit/window.h"
#include "windows/workspace/new_project.h"
#include "windows/workspace/project_opening.h"

namespace pellux {
namespace {

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
}

void on_destruction(Shell& shell) {
    xvt_app_set_event_hook({});
    close_help(shell.help);
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

long on_event(void* context, Window window, const Event& event) {
    auto& shell = from_context<Shell>(context);
    if (event.get<CreationEvent>() != nullptr)
        on_creation(shell, window);
    else if (event.get<DestructionEvent>() != nullptr)
        on_destruction(shell);
    else if (event.get<CloseEvent>() != nullptr && ask_to_quit(shell))
        xvt_app_destroy();
    else if (const auto* command = event.get<CommandEvent>())
        on_command(shell, command->tag);
    else if (const auto* wish = event.get<QuitEvent>())
        on_quit(shell, *wish);
    else if (const auto* drop = event.get<DropEvent>())
        open_projects_among(drop->paths);
    else if (event.get<HelpEvent>() != nullptr)
        show_help_contents();
    return 0;
}

} // namespace

EventHandler task_handler(Shell& shell) {
    return {on_event, &shell};
}

} // namespace pellux
