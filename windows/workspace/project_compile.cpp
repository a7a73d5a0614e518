#include "windows/workspace/project_compile.h"

#include "core/project/compile_arguments.h"
#include "windows/workspace/messages.h"
#include "windows/workspace/open_projects.h"
#include "windows/workspace/project_frame.h"
#include "windows/workspace/project_info.h"
#include "windows/workspace/project_view.h"
#include "windows/workspace/reading_window.h"

namespace pellux {
namespace {

void on_ended(ReadingWindow& output, int status) {
    append_line(output,
                view(format_message(status == 0 ? msg_compile_succeeded : msg_compile_failed)));
    update_info_commands(output.project);
}

Vector<CompileEntry> entries_of(const OpenProject& open) {
    Vector<CompileEntry> entries;
    for (const Owned<VHDL_source>& source : open.project->sources)
        entries.push_back({source.get(), false});
    for (const std::size_t index : selected_sources(open.window))
        if (index < entries.size())
            entries[index].selected = true;
    return entries;
}

} // namespace

void compile_project(Window project, bool all) {
    const ReadingSubject subject{ReadingKind::compile_output, project};
    OpenProject* open = find_open_project(project);
    if (open == nullptr)
        return;
    if (is_speaking(subject)) {
        raise_reading_window(subject);
        show_status(project,
                    view(format_message(msg_compiles_already, open->project->file_name.c_str())));
        return;
    }
    Vector<String> words;
    const bool is_prepared = prepare_compile(*open->project, entries_of(*open), all, words);
    show_project_change(project);
    if (!is_prepared)
        return;
    const String title = format_message(msg_compile_title, project_label(*open->project).c_str());
    ReadingWindow* output = open_reading_window(subject, view(title));
    if (output == nullptr)
        return;
    String line;
    for (const String& word : words)
        (line += word) += ' ';
    append_line(*output, view(line));
    run_program_in(*output, words, on_ended);
}

} // namespace pellux
