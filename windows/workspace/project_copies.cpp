#include "windows/workspace/project_copies.h"

#include "core/os/process.h"
#include "core/project/project_file.h"
#include "core/text/text_document.h"
#include "windows/controls/boxes.h"
#include "windows/editor/open_editors.h"
#include "windows/editor/other_program.h"
#include "windows/workspace/messages.h"
#include "windows/workspace/project_frame.h"
#include "windows/workspace/project_view.h"

#include <utility>

namespace pellux {
namespace {

bool is_named(const Project& project) {
    return !project.file_name.view().empty();
}

/// What there is to compare of a project: each file and each option that is chosen on a line.
void fill(TextDocument& document, const Project& project) {
    String text;
    const auto add = [&text](const char* name, std::string_view value) {
        if (value.empty())
            return;
        text += name;
        text += value;
        text += '\n';
    };
    for (const Owned<VHDL_source>& source : project.sources)
        add(project.top_design == source.get() ? "Top design: " : "File: ",
            source->file_name.view());
    add("Device: ", project.options.device.view());
    add("Library: ", project.options.library.view());
    append_loaded(document, view(text));
}

bool restore_subject(const DifferencesSubject& subject) {
    return restore_project(subject.project, view(subject.copy));
}

} // namespace

void note_project_file(Window window) {
    OpenProject* open = find_open_project(window);
    if (open == nullptr)
        return;
    const String path = is_named(*open->project) ? project_path(*open->project) : String();
    if (path == open->noted_file)
        return;
    if (!open->noted_file.empty())
        note_closed(view(open->noted_file));
    open->noted_file = path;
    open->other_program = path.empty() ? 0 : find_other_program(view(path));
    open->copy.process = open->other_program == 0 ? 0 : current_process_id();
    if (!path.empty())
        note_opened(view(path));
    tell_of_other_program(path, open->other_program);
}

bool may_write_beside_other(Window window) {
    const OpenProject* open = find_open_project(window);
    if (open == nullptr || open->other_program == 0)
        return true;
    const auto agreed =
        ask_to_write_beside_other(project_path(*open->project), open->agreed_program);
    if (OpenProject* still = find_open_project(window); still != nullptr && agreed)
        still->agreed_program = *agreed;
    return agreed.has_value();
}

void write_project_copy(OpenProject& open) {
    if (!is_named(*open.project) || !has_changed(open))
        return;
    const auto write = [](const void* context, std::string_view place, std::uint32_t permissions) {
        return write_project_as(*static_cast<const Project*>(context), place, {}, permissions)
            .error;
    };
    write_copy(open.copy, {project_path(*open.project), open.content, write, open.project.get()});
}

void note_saved_project(OpenProject& open) {
    if (is_named(*open.project) &&
        failed(sum_file(view(project_path(*open.project)), open.content)))
        open.content = {};
    note_saved_copy(open.copy, open.content);
}

void finish_project(OpenProject& open) {
    finish_copy(open.copy, is_named(*open.project) ? view(project_path(*open.project)) : "");
}

void save_all_work() {
    save_all_copies();
    for (const Owned<OpenProject>& open : workspace().projects)
        write_project_copy(*open);
}

bool restore_project(Window window, std::string_view copy) {
    ProjectHeader header;
    Owned<Project> restored = read_project(copy, header);
    OpenProject* open = find_open_project(window);
    if (restored == nullptr || open == nullptr)
        return false;
    restored->directory = open->project->directory;
    restored->file_name.assign(open->project->file_name.view());
    restored->window = open->project->window;
    open->project = std::move(restored);
    open->history = {};
    open->written_content.clear();
    take_over_copy(open->copy, project_path(*open->project), copy);
    show_sources(window, {});
    show_project_change(window);
    apply_editor_options(window);
    return true;
}

void use_chosen_copy(Window window, const ChosenCopy& choice) {
    OpenProject* open = find_open_project(window);
    if (open == nullptr)
        return;
    const String copy = choice.copy.path;
    if (!choice.is_to_compare) {
        restore_project(window, view(copy));
        return;
    }
    // It stays until the user has chosen between the two.
    open->copy.process = current_process_id();
    show_project_differences({.project = window,
                              .file = project_path(*open->project),
                              .copy = copy,
                              .restore = restore_subject});
}

void show_project_differences(const DifferencesSubject& subject) {
    const Owned<Project> file =
        file_exists(view(subject.file)) ? read_project(view(subject.file)) : make_owned<Project>();
    const Owned<Project> copy = read_project(view(subject.copy));
    if (file == nullptr || copy == nullptr)
        return;
    const Owned<TextDocument> one = make_owned<TextDocument>();
    const Owned<TextDocument> other = make_owned<TextDocument>();
    fill(*one, *file);
    fill(*other, *copy);
    show_differences(subject, *one, *other);
}

} // namespace pellux
