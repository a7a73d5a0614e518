#include "windows/workspace/open_projects.h"

#include "core/common/lexical_path.h"
#include "core/os/files.h"

#include <algorithm>
#include <utility>

namespace pellux {
namespace {

Workspace g_workspace;

} // namespace

Workspace& workspace() {
    return g_workspace;
}

OpenProject* find_open_project(Window window) {
    for (const Owned<OpenProject>& open : g_workspace.projects)
        if (open->window == window)
            return open.get();
    return nullptr;
}

Project* find_project(Window window) {
    OpenProject* open = find_open_project(window);
    return open == nullptr ? nullptr : open->project.get();
}

OpenProject* find_open_project(std::string_view directory, std::string_view name) {
    for (const Owned<OpenProject>& open : g_workspace.projects)
        if (open->project->file_name.view() == name && view(open->project->directory) == directory)
            return open.get();
    return nullptr;
}

void note_written(OpenProject& open, const FileIdentity& file) {
    open.written = project_image(*open.project);
    open.written_content = project_content(*open.project);
    open.file = file;
}

bool has_changed(const OpenProject& open) {
    return open.written_content.empty() || project_content(*open.project) != open.written_content;
}

OpenProject& list_project(Owned<Project> project, Window window) {
    Owned<OpenProject> open = make_owned<OpenProject>();
    open->project = std::move(project);
    open->window = window;
    g_workspace.projects.push_back(std::move(open));
    return *g_workspace.projects.back();
}

void forget_project(Window window) {
    if (const OpenProject* open = find_open_project(window))
        note_closed(view(open->noted_file));
    std::erase_if(g_workspace.projects,
                  [window](const Owned<OpenProject>& open) { return open->window == window; });
}

void enter_project(Window window) {
    // A directory that is gone will be told by the command that needs it.
    if (const OpenProject* open = find_open_project(window))
        static_cast<void>(change_directory(view(open->project->directory)));
}

String project_path(const Project& project) {
    return joined_path(view(project.directory), project.file_name.view());
}

String project_file_name(std::string_view name) {
    String full(name);
    if (!is_project_file(name)) {
        full += '.';
        full += k_project_extension;
    }
    return full;
}

bool is_project_file(std::string_view name) {
    return has_extension(name, k_project_extension);
}

} // namespace pellux
