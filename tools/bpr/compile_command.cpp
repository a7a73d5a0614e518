#include "tools/bpr/compile_command.h"

#include "core/common/callback.h"
#include "core/diagnostics/reporter.h"
#include "core/launch/spawner.h"
#include "core/project/compile_arguments.h"
#include "core/project/project_file.h"
#include "tools/bpr/exit_status.h"
#include "tools/bpr/messages.h"
#include "tools/bpr/write_result.h"

#include <algorithm>

namespace pellux {
namespace {

/// Standard output, which knows whether its last line was ended.
struct Output {
    bool at_line_start = true;

    void write(std::string_view text) {
        if (text.empty())
            return;
        static_cast<void>(write_handle(standard_output(), std::as_bytes(std::span(text))));
        at_line_start = text.back() == '\n';
    }
};

/// The rows of the project's list, in its order; false when a selected name is not among them.
bool list_entries(const Project& project, std::string_view file,
                  const std::span<const char* const>* selected, Vector<CompileEntry>& entries) {
    for (const Owned<VHDL_source>& source : project.sources)
        entries.push_back({source.get(), false});
    if (selected == nullptr)
        return true;
    for (const char* name : *selected) {
        bool found = false;
        for (CompileEntry& entry : entries) {
            if (entry.source->file_name.view() == name)
                found = entry.selected = true;
        }
        if (!found) {
            tell(msg_no_such_source, String(file).c_str(), name);
            return false;
        }
    }
    return true;
}

bool enter_directory_of(std::string_view file) {
    const std::string_view directory = directory_part(file);
    if (directory.empty() || !failed(change_directory(directory)))
        return true;
    tell(msg_cannot_enter, String(directory).c_str());
    return false;
}

/// Runs the compiler to its end; its status, or -1 when it cannot be started.
int run_compiler(const Vector<String>& vector) {
    Output output;
    Vector<const char*> words;
    for (const String& word : vector) {
        output.write(view(word + " "));
        words.push_back(word.c_str());
    }
    words.push_back(nullptr);
    output.write("\n");
    Spawner spawner(
        [](void* context, const char* text, int done, int) {
            if (done == 0)
                from_context<Output>(context).write(text);
        },
        &output);
    if (!spawner.launch(words.front(), words.data())) {
        tell(msg_bpr_cannot_run, words.front());
        return -1;
    }
    const int status = spawner.wait();
    if (!output.at_line_start)
        output.write("\n");
    output.write(status == 0 ? msg_successful.text() : msg_unsuccessful.text());
    output.write("\n");
    return status;
}

} // namespace

int compile_project_file(std::string_view file, const std::span<const char* const>* selected) {
    Owned<Project> project = read_project(file);
    Vector<CompileEntry> entries;
    if (project == nullptr || !list_entries(*project, file, selected, entries) ||
        !enter_directory_of(file))
        return k_status_unusable;
    const bool rebuild = project->options.has(OptionFlag::rebuild);
    Vector<String> vector;
    if (!prepare_compile(*project, entries, selected == nullptr, vector))
        return k_status_unusable;
    if (rebuild != project->options.has(OptionFlag::rebuild)) {
        const std::string_view name = file_name_part(file);
        if (!tell_write_result(write_project_as(*project, name, {}), name))
            return k_status_unusable;
    }
    const int status = run_compiler(vector);
    return status < 0 ? k_status_unusable : status;
}

} // namespace pellux
