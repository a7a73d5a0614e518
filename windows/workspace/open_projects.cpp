#include "windows/workspace/open_projects.h"

#include "core/common/text_file.h"
#include "core/os/environment.h"
#include "core/os/files.h"
#include "core/project/messages.h"
#include "core/project/project_file.h"
#include "windows/toolkit/window.h"
#include "windows/workspace/boxes.h"
#include "windows/workspace/messages.h"
#include "windows/workspace/new_project.h"
#include "windows/workspace/project_view.h"
#include "windows/workspace/project_windows.h"

#include <algorithm>
#include <utility>

namespace pellux {
namespace {

Workspace g_workspace;

String joined(std::string_view directory, std::string_view name) {
    String path(directory);
    if (!path.empty() && !is_separator(path.back()))
        path += path_separator();
    return path += name;
}

/// Takes note of what the project's file is after writing.
void take_file(OpenProject& open) {
    const String path = joined(view(open.project->directory), open.project->file_name.view());
    if (failed(identify_file(view(path), open.file)))
        open.file = {};
}

/// A file that was copied or renamed goes by the name that it has now: under the one that is
/// written in it another project would be overwritten.
bool open_file(std::string_view path, std::string_view directory, std::string_view name) {
    // What is written to it while it is being read counts as a change.
    FileIdentity file;
    if (failed(identify_file(path, file)))
        file = {};
    Owned<Project> project = read_project(path);
    if (project == nullptr)
        return false;
    project->directory = directory;
    project->file_name.assign(name);
    Vector<std::byte> image = project_image(*project);
    if (!add_project(std::move(project)))
        return false;
    OpenProject& open = *g_workspace.projects.back();
    open.written = std::move(image);
    open.file = file;
    show_project_change(open.window);
    return true;
}

/// Asks for a name that no file has; false when the project stays without one.
bool name_project(Window window) {
    const String title = format_message(msg_name_project);
    for (;;) {
        const OpenProject* open = find_open_project(window);
        if (open == nullptr)
            return false;
        const String directory = open->project->directory;
        FileChoice choice;
        if (!xvt_dm_post_file_save({.title = view(title),
                                    .directory = view(directory),
                                    .name = {},
                                    .extension = k_project_extension},
                                   choice))
            return false;
        const String name = project_file_name(view(choice.name));
        const String path = joined(view(choice.directory), view(name));
        OpenProject* named = find_open_project(window);
        if (named == nullptr)
            return false;
        if (!file_exists(view(path)) &&
            find_open_project(view(choice.directory), view(name)) == nullptr) {
            named->project->file_name.assign(view(name));
            named->project->directory = choice.directory;
            show_project_name(window, *named->project);
            return true;
        }
        post_error(msg_project_exists, path.c_str());
    }
}

/// Another program has written the file since: may that be lost? True when none has.
bool may_replace(const OpenProject& open, const String& path) {
    const bool is_named = !open.project->file_name.view().empty();
    if (!is_named || open.written.empty() ||
        changed_on_disk(view(path), open.file) != DiskState::changed)
        return true;
    const String text = format_message(msg_project_changed, path.c_str());
    return xvt_dm_post_ask(k_cancel, "Write", nullptr, "%s", text.c_str()) == 1;
}

/// False when the user keeps the file as it is, or after they were told of a failure.
bool write_open_project(Window window) {
    const OpenProject* known = find_open_project(window);
    if (known == nullptr)
        return false;
    const String path = joined(view(known->project->directory), known->project->file_name.view());
    if (!may_replace(*known, path))
        return false;
    OpenProject* open = find_open_project(window);
    if (open == nullptr)
        return false;
    store_place(window, *open->project);
    const ProjectWriteResult result = write_project(*open->project);
    if (!failed(result.error)) {
        open->written = project_image(*open->project);
        take_file(*open);
        show_project_change(window);
    }
    if (failed(result.error))
        post_error(msg_cannot_write_project, path.c_str(), error_text(result.error).c_str());
    else if (result.attributes_lost)
        xvt_dm_post_warning("%s",
                            format_message(msg_project_attributes_lost, path.c_str()).c_str());
    if (failed(result.directory_error))
        xvt_dm_post_warning("%s", format_message(msg_directory_behind, path.c_str(),
                                                 error_text(result.directory_error).c_str())
                                      .c_str());
    if (!result.old_contents.empty())
        post_error(msg_project_old_contents, path.c_str(), result.old_contents.c_str());
    return !failed(result.error);
}

/// For a project that can't be written, which else could never be closed.
bool agrees_to_lose(Window window) {
    const OpenProject* open = find_open_project(window);
    if (open == nullptr)
        return false;
    const String text = format_message(msg_close_unsaved, open->project->file_name.c_str());
    return xvt_dm_post_ask(k_cancel, "Close", nullptr, "%s", text.c_str()) == 1;
}

/// Offers a name to a project without one; false when it must stay open. So it does when the
/// question is closed, which thus loses nothing.
bool is_named_or_given_up(Window window) {
    const OpenProject* open = find_open_project(window);
    if (open == nullptr)
        return false;
    if (!open->project->file_name.view().empty())
        return true;
    Question question;
    question.kind = QuestionKind::ask;
    question.text = format_message(msg_save_new_project);
    question.buttons = {k_yes, k_no};
    question.closing_is_no = false;
    const int answer = ask(question).button;
    return answer == 0 ? name_project(window) : answer == 1;
}

bool close_one(Window window) {
    if (!is_named_or_given_up(window))
        return false;
    if (!write_open_project(window) && !agrees_to_lose(window))
        return false;
    if (find_open_project(window) == nullptr)
        return false;
    xvt_vobj_destroy(window);
    forget_project(window);
    if (g_workspace.projects.empty())
        g_workspace.shell.end_application(g_workspace.shell.context);
    return true;
}

} // namespace

Workspace& workspace() {
    return g_workspace;
}

void start_workspace(const ShellHooks& shell) {
    g_workspace = {};
    g_workspace.shell = shell;
    register_project_window();
    register_new_project();
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

bool open_project_here(std::string_view name) {
    PathBuffer directory;
    if (failed(current_directory(directory)) && !program_directory(directory))
        directory.clear();
    return open_file(name, directory.view(), name);
}

bool open_project_in(std::string_view directory, std::string_view name) {
    PathBuffer resolved;
    if (!failed(real_path(directory, resolved)))
        directory = resolved.view();
    if (const OpenProject* open = find_open_project(directory, name)) {
        xvt_vobj_raise(open->window);
        return true;
    }
    return open_file(view(joined(directory, name)), directory, name);
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

bool add_project(Owned<Project> project) {
    const Window window = create_project_window(*project);
    if (window == Window::none) {
        post_error(msg_no_project_window);
        return false;
    }
    g_workspace.projects.push_back(
        make_owned<OpenProject>(OpenProject{std::move(project), window, {}, {}, {}, {}}));
    show_sources(window, {});
    show_project_change(window);
    return true;
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

bool save_project(Window window) {
    const OpenProject* open = find_open_project(window);
    if (open == nullptr || (open->project->file_name.view().empty() && !name_project(window)))
        return false;
    return write_open_project(window);
}

void enter_project(Window window) {
    // A directory that is gone will be told by the command that needs it.
    if (const OpenProject* open = find_open_project(window))
        static_cast<void>(change_directory(view(open->project->directory)));
}

ClosingScope::ClosingScope() : is_entered_(!std::exchange(g_workspace.is_closing, true)) {}

ClosingScope::~ClosingScope() {
    if (is_entered_)
        g_workspace.is_closing = false;
}

bool close_project(Window window) {
    const ClosingScope closing;
    if (!closing.is_entered() || find_open_project(window) == nullptr)
        return false;
    if (g_workspace.projects.size() == 1) {
        const String text = format_message(msg_quit);
        if (xvt_dm_post_ask(k_ok, k_cancel, nullptr, "%s", text.c_str()) != 0)
            return false;
        g_workspace.shell.remember_placement(g_workspace.shell.context);
    }
    return close_one(window);
}

bool close_all_projects() {
    while (!g_workspace.projects.empty())
        if (!close_one(g_workspace.projects.front()->window))
            return false;
    return true;
}

void forget_project(Window window) {
    std::erase_if(g_workspace.projects,
                  [window](const Owned<OpenProject>& open) { return open->window == window; });
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
