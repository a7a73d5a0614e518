#include "windows/workspace/project_compile.h"

#include "core/common/lexical_path.h"
#include "core/project/compile_arguments.h"
#include "windows/compile/compile_window.h"
#include "windows/controls/boxes.h"
#include "windows/controls/shell_hooks.h"
#include "windows/editor/open_editors.h"
#include "windows/textview/text_windows.h"
#include "windows/toolkit/window.h"
#include "windows/workspace/messages.h"
#include "windows/workspace/open_projects.h"
#include "windows/workspace/project_frame.h"
#include "windows/workspace/project_info.h"
#include "windows/workspace/project_view.h"
#include "windows/workspace/search_window.h"

#include <algorithm>

namespace pellux {
namespace {

Vector<CompileEntry> entries_of(const Project& project, const CompileRequest& request) {
    Vector<CompileEntry> entries;
    for (const Owned<VHDL_source>& source : project.sources) {
        const bool is_named = std::ranges::any_of(request.names, [&](const String& name) {
            return view(name) == source->file_name.view();
        });
        entries.push_back({source.get(), is_named});
    }
    return entries;
}

Vector<EditorWindow*> editors_of(Window project) {
    Vector<EditorWindow*> editors;
    for (EditorWindow* editor : open_editors())
        if (editor->project == project && editor->has_view())
            editors.push_back(editor);
    return editors;
}

Vector<EditorWindow*> changed_editors_of(Window project) {
    Vector<EditorWindow*> editors = editors_of(project);
    std::erase_if(editors, [](EditorWindow* editor) {
        return !editor->document().is_modified || !has_name(editor->file());
    });
    return editors;
}

/// False when one of them could not be saved. Each may ask, and so may close any.
bool save_editors(Window project) {
    for (EditorWindow* editor : changed_editors_of(project)) {
        const Vector<EditorWindow*> left = changed_editors_of(project);
        if (std::ranges::find(left, editor) != left.end() && !editor->save())
            return false;
    }
    return true;
}

/// Saves what the user wants; false when they want no compile.
bool offer_saving(Window project) {
    constexpr std::size_t k_named_max = 8;
    const Vector<EditorWindow*> changed = changed_editors_of(project);
    if (changed.empty())
        return true;
    String names;
    for (std::size_t i = 0; i < std::min(changed.size(), k_named_max); ++i)
        (names += "\n") += path_of(changed[i]->file());
    if (changed.size() > k_named_max)
        names += "\n...";
    const String text = format_message(msg_save_before_compile, names.c_str());
    const int answer = xvt_dm_post_ask("Save", "Don't save", k_cancel, "%s", text.c_str());
    return answer == 0 ? save_editors(project) : answer == 1;
}

void on_change(Window project) {
    if (OpenProject* open = find_open_project(project))
        open->walks_errors = true;
    update_info_commands(project);
    show_project_change(project);
    for (EditorWindow* editor : editors_of(project))
        editor->follow_project();
}

void on_begin(Window project) {
    for (EditorWindow* editor : editors_of(project))
        editor->forget_messages();
}

/// The editor that shows the file of a message, where there is one already.
EditorWindow* editor_of(Window project, const MessageLine& message) {
    const OpenProject* open = find_open_project(project);
    return open == nullptr
               ? nullptr
               : find_editor(view(absolute_path(view(open->project->directory), message.file)));
}

void on_message(Window project, std::int64_t number, const MessageLine& message) {
    EditorWindow* editor = editor_of(project, message);
    if (editor != nullptr && editor->has_view())
        editor->note_message(number, message);
}

bool locate(Window project, std::int64_t number, const MessageLine& message) {
    OpenProject* open = find_open_project(project);
    if (open == nullptr)
        return false;
    open->walks_errors = true;
    const String path = absolute_path(view(open->project->directory), message.file);
    if (open_editor(project, view(path)) == nullptr)
        return false;
    EditorWindow* editor = editor_of(project, message);
    if (editor == nullptr || !editor->has_view())
        return false;
    editor->show_message(number, message);
    return true;
}

/// Null where another run goes on, which then is in front.
OpenProject* find_idle_project(Window project) {
    OpenProject* open = find_open_project(project);
    if (open == nullptr || !is_compiling(project))
        return open;
    CompileWindow& output = *find_compile_window(project);
    xvt_vobj_raise(output.window());
    Message<const char*>& words =
        output.is_simulation() ? msg_simulates_already : msg_compiles_already;
    show_status(project, view(format_message(words, open->project->file_name.c_str())));
    return nullptr;
}

void compile(Window project, const CompileRequest& request) {
    OpenProject* open = find_idle_project(project);
    if (open == nullptr)
        return;
    Vector<String> words;
    const bool is_prepared =
        prepare_compile(*open->project, entries_of(*open->project, request), request.is_all, words);
    show_project_change(project);
    if (!is_prepared)
        return;
    open->last_compile = request;
    const String title = format_message(msg_compile_title, project_label(*open->project).c_str());
    if (CompileWindow* output = open_compile_window(project))
        output->startCompile(words, true, view(title));
}

void offer_and_compile(Window project, const CompileRequest& request) {
    if (find_idle_project(project) != nullptr && offer_saving(project))
        compile(project, request);
}

void save_and_compile(Window project, const CompileRequest& request) {
    if (find_idle_project(project) != nullptr && save_editors(project))
        compile(project, request);
}

} // namespace

void start_compiling(const CompileHooks& commands) {
    register_compile_windows();
    CompileHooks hooks = commands;
    hooks.project = find_project;
    hooks.changed = on_change;
    hooks.begin = on_begin;
    hooks.note_message = on_message;
    hooks.locate = locate;
    compile_hooks() = hooks;
}

void compile_all_files(Window project) {
    offer_and_compile(project, {});
}

void compile_selected_files(Window project) {
    const OpenProject* open = find_open_project(project);
    if (open == nullptr)
        return;
    CompileRequest request{.is_all = false};
    for (const std::size_t index : selected_sources(project))
        request.names.emplace_back(open->project->sources[index]->file_name.view());
    offer_and_compile(project, request);
}

void compile_again(Window project) {
    const OpenProject* open = find_open_project(project);
    if (open != nullptr && open->last_compile)
        offer_and_compile(project, CompileRequest(*open->last_compile));
}

void compile_smartly(Window project) {
    save_and_compile(project, {});
}

void compile_file(Window project, std::string_view path) {
    const Project* of = find_project(project);
    const auto index = of == nullptr ? std::nullopt : find_source(*of, path);
    if (!index) {
        post_error(msg_not_in_project, String(path).c_str());
        return;
    }
    CompileRequest request{.is_all = false};
    request.names.emplace_back(of->sources[*index]->file_name.view());
    save_and_compile(project, request);
}

void compile_front_file(Window project) {
    const EditorWindow* editor = front_editor(project);
    if (editor != nullptr && has_name(editor->file()))
        compile_file(project, view(path_of(editor->file())));
}

void simulate(Window project) {
    OpenProject* open = find_idle_project(project);
    if (open == nullptr || open->project->top_design == nullptr)
        return;
    const Project& of = *open->project;
    Vector<String> words;
    words.emplace_back("brixsim");
    if (of.options.text_12.present() && !of.options.text_12.view().empty())
        words.push_back("-u" + String(of.options.text_12.view()));
    words.push_back("-o" + waveform_name(of));
    words.push_back(source_argument(of.top_design->file_name.view()));
    const String title = format_message(msg_simulation_title, project_label(of).c_str());
    if (CompileWindow* output = open_compile_window(project))
        output->startCompile(words, false, view(title), RunKind::simulation);
}

void open_waveform(Window project) {
    const CompileWindow* output = find_compile_window(project);
    if (output != nullptr && !output->waveform().empty())
        shell().open_waveform(shell().context, view(output->waveform()));
}

void halt_compile(Window project) {
    if (CompileWindow* output = find_compile_window(project))
        output->halt();
}

bool go_to_next_place(Window project, bool backwards) {
    const OpenProject* open = find_open_project(project);
    CompileWindow* output = find_compile_window(project);
    if (open == nullptr)
        return false;
    const bool walks_errors = open->walks_errors;
    if (walks_errors && output != nullptr && output->go_to_next(backwards))
        return true;
    return go_to_next_result(project, backwards) ||
           (!walks_errors && output != nullptr && output->go_to_next(backwards));
}

CompileState compile_state(Window project) {
    const OpenProject* open = find_open_project(project);
    const CompileWindow* output = find_compile_window(project);
    CompileState state;
    state.has_editor = front_editor(project) != nullptr;
    state.has_run = open != nullptr && open->last_compile.has_value();
    if (output != nullptr) {
        state.runs = output->is_running();
        state.has_messages = output->log().next_message(-1) != nullptr;
        state.has_waveform = !output->waveform().empty();
    }
    return state;
}

} // namespace pellux
