#include "tools/bpr/commands.h"

#include "core/common/callback.h"
#include "core/common/visible_text.h"
#include "core/diagnostics/reporter.h"
#include "core/launch/spawner.h"
#include "core/os/argument_vector.h"
#include "core/os/interruption.h"
#include "core/project/compile_arguments.h"
#include "tools/bpr/messages.h"
#include "tools/bpr/terminal.h"

namespace pellux {
namespace {

/// The rows of the project's list, in its order; false when a selected name is not among them.
bool list_entries(const Project& project, std::string_view file,
                  const std::span<const char* const>* selected, Vector<CompileEntry>& entries) {
    const std::span<const char* const> names =
        selected == nullptr ? std::span<const char* const>() : *selected;
    TextMap<bool> is_listed; // by the selected names
    for (const char* name : names)
        is_listed.emplace(name, false);
    for (const Owned<VHDL_source>& source : project.sources) {
        const auto found = is_listed.find(source->file_name.view());
        entries.push_back({source.get(), found != is_listed.end()});
        if (found != is_listed.end())
            found->second = true;
    }
    for (const char* name : names) {
        if (!is_listed.find(std::string_view(name))->second) {
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
    Terminal output(standard_output());
    String line;
    for (const String& word : vector) {
        for (std::string_view rest = view(word); !rest.empty();)
            rest.remove_prefix(append_visible(line, rest));
        line += ' ';
    }
    output.write(view(line + "\n"));
    Spawner spawner(
        [](void* context, const char* text, int done, int) {
            if (done == 0)
                from_context<Terminal>(context).write(text);
        },
        &output);
    const auto words = argument_vector<Vector<const char*>>(vector);
    notice_interruption(quit_loop);
    if (const LaunchResult result = spawner.launch(words.front(), words.data()); !result) {
        tell_launch_failure(result);
        return -1;
    }
    const int status = spawner.wait();
    // What still runs ends with the spawner and the program.
    if (interruption() != 0)
        return k_status_interrupted + interruption();
    output.end_line();
    output.write(status == 0 ? msg_successful.text() : msg_unsuccessful.text());
    output.write("\n");
    const int output_status = status_after_output(output.error());
    return status == 0 ? output_status : status;
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
        // The next compile will do it all again, which is no reason not to compile now.
        if (!tell_write_result(write_project_as(*project, name, {}), name))
            warning(-1, msg_rebuild_stays, String(name).c_str());
    }
    const int status = run_compiler(vector);
    return status < 0 ? k_status_unusable : status;
}

} // namespace pellux
