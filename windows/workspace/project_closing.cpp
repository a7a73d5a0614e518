#include "windows/workspace/project_closing.h"

#include "core/common/lexical_path.h"
#include "core/os/files.h"
#include "core/project/project_file.h"
#include "windows/compile/compile_window.h"
#include "windows/controls/boxes.h"
#include "windows/controls/shell_hooks.h"
#include "windows/editor/open_editors.h"
#include "windows/toolkit/window.h"
#include "windows/workspace/messages.h"
#include "windows/workspace/open_projects.h"
#include "windows/workspace/project_copies.h"
#include "windows/workspace/project_frame.h"

#include <utility>

namespace pellux {
namespace {

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
        const String path = joined_path(view(choice.directory), view(name));
        OpenProject* named = find_open_project(window);
        if (named == nullptr)
            return false;
        if (!file_exists(view(path)) &&
            find_open_project(view(choice.directory), view(name)) == nullptr) {
            named->project->file_name.assign(view(name));
            named->project->directory = choice.directory;
            note_project_file(window);
            show_project_names();
            return true;
        }
        post_error(msg_project_exists, path.c_str());
    }
}

/// Another program has written the file since: may that be lost? True when none has.
bool may_replace(const OpenProject& open, const String& path) {
    const bool is_named = !open.project->file_name.view().empty();
    if (!is_named || changed_on_disk(view(path), open.file) != DiskState::changed)
        return true;
    const String text = format_message(msg_project_changed, path.c_str());
    return xvt_dm_post_ask(k_cancel, "Write", nullptr, "%s", text.c_str()) == 1;
}

/// Writes the file as it is in memory, and takes note of what it is then.
ProjectWriteResult write_file(OpenProject& open) {
    ProjectWriteResult result = write_project(*open.project);
    FileIdentity file;
    if (failed(result.error))
        return result;
    if (failed(identify_file(view(project_path(*open.project)), file)))
        file = {};
    note_written(open, file);
    note_saved_project(open);
    return result;
}

/// Those of the project's window and of its compile window.
void store_places(OpenProject& open) {
    store_place(open);
    if (CompileWindow* output = find_compile_window(open.window))
        output->keep_place();
}

/// False when the user keeps the file as it is, or after they were told of a failure.
bool write_open_project(Window window) {
    const OpenProject* known = find_open_project(window);
    if (known == nullptr)
        return false;
    const String path = project_path(*known->project);
    if (!may_write_beside_other(window))
        return false;
    known = find_open_project(window);
    if (known == nullptr || !may_replace(*known, path))
        return false;
    OpenProject* open = find_open_project(window);
    if (open == nullptr)
        return false;
    store_places(*open);
    const ProjectWriteResult result = write_file(*open);
    if (!failed(result.error))
        show_project_change(window);
    tell_outcome(path, {result.error, result.directory_error, result.attributes_lost,
                        result.old_contents.view()});
    return !failed(result.error);
}

/// Writes what the project only remembers, if it differs and the file is still the one that was
/// read. Nobody has asked for it, so nobody is told when it fails, but of a damaged file.
void write_memory(OpenProject& open) {
    const String path = project_path(*open.project);
    if (project_image(*open.project) != open.written &&
        changed_on_disk(view(path), open.file) == DiskState::same)
        tell_old_contents(path, write_file(open).old_contents.view());
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
    const int answer = ask_carefully(format_message(msg_save_new_project), {k_yes, k_no});
    return answer == 0 ? name_project(window) : answer == 1;
}

bool close_one(Window window) {
    if (!is_named_or_given_up(window))
        return false;
    if (CompileWindow* output = find_compile_window(window); output != nullptr && !output->halt())
        return false;
    const bool is_last = workspace().projects.size() == 1;
    if (!may_close_editors(window) || (is_last && !may_close_editors(Window::none)))
        return false;
    // Each lets the project remember where it stood.
    close_editors(window);
    OpenProject* open = find_open_project(window);
    if (open == nullptr)
        return false;
    store_places(*open);
    const bool is_gone = !file_exists(view(project_path(*open->project)));
    if (!is_gone && !has_changed(*open))
        write_memory(*open);
    else if (!write_open_project(window) && !agrees_to_lose(window))
        return false;
    OpenProject* closing = find_open_project(window);
    if (closing == nullptr)
        return false;
    finish_project(*closing);
    xvt_vobj_destroy(window);
    if (is_last)
        close_editors(Window::none);
    if (workspace().projects.empty())
        shell().end_application(shell().context);
    return true;
}

} // namespace

bool save_project(Window window) {
    const OpenProject* open = find_open_project(window);
    if (open == nullptr || (open->project->file_name.view().empty() && !name_project(window)))
        return false;
    return write_open_project(window);
}

ClosingScope::ClosingScope() : is_entered_(!std::exchange(workspace().is_closing, true)) {}

ClosingScope::~ClosingScope() {
    if (is_entered_)
        workspace().is_closing = false;
}

bool close_project(Window window) {
    const ClosingScope closing;
    if (!closing.is_entered() || find_open_project(window) == nullptr)
        return false;
    if (workspace().projects.size() == 1) {
        const String text = format_message(msg_quit);
        if (xvt_dm_post_ask(k_ok, k_cancel, nullptr, "%s", text.c_str()) != 0)
            return false;
        shell().remember_placement(shell().context);
    }
    return close_one(window);
}

bool close_all_projects() {
    if (workspace().projects.empty()) {
        if (!may_close_editors(Window::none))
            return false;
        close_editors(Window::none);
    }
    while (!workspace().projects.empty())
        if (!close_one(workspace().projects.front()->window))
            return false;
    return true;
}

} // namespace pellux
