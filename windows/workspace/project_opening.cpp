#include "windows/workspace/project_opening.h"

#include "core/common/lexical_path.h"
#include "core/os/environment.h"
#include "core/os/files.h"
#include "core/project/project_file.h"
#include "windows/controls/boxes.h"
#include "windows/toolkit/window.h"
#include "windows/workspace/messages.h"
#include "windows/workspace/open_projects.h"
#include "windows/workspace/project_copies.h"
#include "windows/workspace/project_frame.h"
#include "windows/workspace/project_view.h"

#include <utility>

namespace pellux {
namespace {

/// Brings the project of a file to the front, if it is open.
bool raise_open(std::string_view directory, std::string_view name) {
    const OpenProject* open = find_open_project(directory, name);
    if (open == nullptr)
        return false;
    xvt_vobj_raise(open->window);
    return true;
}

/// A file that was copied or renamed goes by the name that it has now: under the one that is
/// written in it another project would be overwritten.
bool open_file(std::string_view path, std::string_view directory, std::string_view name,
               const std::optional<ChosenCopy>& choice) {
    // What is written to it while it is being read counts as a change.
    FileIdentity file;
    if (failed(identify_file(path, file)))
        file = {};
    // A project that has only a copy is that copy.
    const bool is_missing = choice && !choice->is_to_compare && !file_exists(path);
    Owned<Project> project = read_project(is_missing ? view(choice->copy.path) : path);
    if (project == nullptr)
        return false;
    project->directory = directory;
    project->file_name.assign(name);
    if (!add_project(std::move(project)))
        return false;
    OpenProject& open = *workspace().projects.back();
    note_written(open, file);
    note_saved_project(open);
    show_project_change(open.window);
    if (choice)
        use_chosen_copy(open.window, *choice);
    return true;
}

} // namespace

bool open_project_here(std::string_view name) {
    PathBuffer directory;
    if (failed(current_directory(directory)) && !program_directory(directory))
        directory.clear();
    return raise_open(directory.view(), name) ||
           open_file(name, directory.view(), name,
                     choose_copy(view(joined_path(directory.view(), name))));
}

bool open_project_in(std::string_view directory, std::string_view name) {
    PathBuffer resolved;
    if (!failed(real_path(directory, resolved)))
        directory = resolved.view();
    const String path = joined_path(directory, name);
    return raise_open(directory, name) ||
           open_file(view(path), directory, name, choose_copy(view(path)));
}

bool open_left_project(std::string_view path, const String& copy) {
    const std::string_view directory = directory_part(path);
    const std::string_view name = file_name_part(path);
    const OpenProject* open = find_open_project(directory, name);
    return open != nullptr ? restore_project(open->window, view(copy))
                           : open_file(path, directory, name, ChosenCopy{.copy = {.path = copy}});
}

Vector<String> open_projects_among(std::span<const String> paths) {
    Vector<String> others;
    for (const String& path : paths) {
        if (is_project_file(view(path)))
            open_project_in(directory_part(view(path)), file_name_part(view(path)));
        else
            others.push_back(path);
    }
    return others;
}

void choose_project() {
    const String title = format_message(msg_open_project);
    FileChoice choice;
    if (xvt_dm_post_file_open(
            {.title = view(title), .directory = {}, .name = {}, .extension = k_project_extension},
            choice) &&
        !choice.name.empty())
        open_project_in(view(choice.directory), view(choice.name));
}

bool add_project(Owned<Project> project) {
    const Window window = create_project_window(*project);
    if (window == Window::none) {
        post_error(msg_no_project_window);
        return false;
    }
    list_project(std::move(project), window).placed = xvt_vobj_get_outer_rect(window);
    note_project_file(window);
    show_project_names();
    show_sources(window, {});
    show_project_change(window);
    return true;
}

} // namespace pellux
