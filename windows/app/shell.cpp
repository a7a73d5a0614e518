#include "windows/app/shell.h"

#include "core/common/callback.h"
#include "core/common/lexical_path.h"
#include "core/os/files.h"
#include "windows/controls/boxes.h"
#include "windows/toolkit/app.h"
#include "windows/toolkit/window.h"
#include "windows/workspace/messages.h"
#include "windows/workspace/new_project.h"
#include "windows/workspace/open_projects.h"
#include "windows/workspace/project_closing.h"
#include "windows/workspace/project_opening.h"

#include <algorithm>
#include <utility>

namespace pellux {
namespace {

/// The project files of the current directory, in the order of their names.
Vector<String> list_project_files() {
    Vector<String> names;
    // What can't be listed holds nothing to open.
    static_cast<void>(list_directory(
        ".",
        [](void* context, std::string_view name, FileKind kind) {
            if (kind != FileKind::directory && is_project_file(name))
                from_context<Vector<String>>(context).emplace_back(name);
            return true;
        },
        &names));
    std::ranges::sort(names);
    return names;
}

/// True when at least one was opened. The user has heard already of one that was `tried`.
bool open_all_projects(std::string_view tried) {
    bool any = false;
    for (const String& name : list_project_files())
        any = (name != tried && open_project_here(view(name))) || any;
    return any;
}

/// Where the project of a bare name is looked for, or all projects: with neither `-%D` nor a file
/// of that name here, in the directory of the last run.
String start_directory(const Shell& shell, std::string_view name) {
    if (shell.options.directory)
        return *shell.options.directory;
    return !name.empty() && file_exists(name) ? String() : shell.last_directory.value_or(String());
}

/// The directory of a path, which is counted from here or, where there is no such file, from the
/// directory of the last run.
String project_directory(const Shell& shell, std::string_view path) {
    const std::string_view directory = directory_part(path);
    if (is_absolute(path) || file_exists(path) || !shell.last_directory)
        return String(directory);
    const bool is_there = file_exists(view(joined_path(view(*shell.last_directory), path)));
    return is_there ? joined_path(view(*shell.last_directory), directory) : String(directory);
}

} // namespace

void open_starting_projects(Shell& shell) {
    if (!std::exchange(shell.is_placed, true))
        restore_task_place(shell.placement);
    // Boxes that come now stand before their program's window.
    xvt_vobj_set_visible(xvt_win_get_task(), true);
    const String project = shell.options.project.value_or(String());
    const std::string_view own_directory = directory_part(view(project));
    const std::string_view name = file_name_part(view(project));
    const String directory = own_directory.empty() ? start_directory(shell, view(project))
                                                   : project_directory(shell, view(project));
    const bool is_there = directory.empty() || !failed(change_directory(view(directory)));
    // Where the project's directory is missing, the one of its name here is another project.
    const bool is_here = is_there || own_directory.empty();
    if (!name.empty() && (is_here ? open_project_here(name) : open_project_in(own_directory, name)))
        return;
    if (!open_all_projects(is_here ? name : std::string_view()))
        ask_for_new_project();
}

bool ask_to_quit(Shell& shell) {
    const ClosingScope closing;
    if (!closing.is_entered())
        return false;
    const String text = format_message(msg_quit);
    if (xvt_dm_post_ask(k_ok, k_cancel, nullptr, "%s", text.c_str()) != 0)
        return false;
    remember_task_place(shell.placement);
    return close_all_projects();
}

void quit(Shell& shell) {
    if (ask_to_quit(shell))
        end_application(shell);
}

void end_application(Shell& shell) {
    if (std::exchange(shell.has_ended, true))
        return;
    write_task_settings(shell.placement);
    xvt_app_destroy();
}

} // namespace pellux
