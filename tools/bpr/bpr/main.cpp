#include "core/common/callback.h"
#include "core/common/text_file.h"
#include "core/diagnostics/catalogue.h"
#include "core/diagnostics/reporter.h"
#include "core/os/files.h"
#include "core/os/process.h"
#include "tools/bpr/compile_command.h"
#include "tools/bpr/exit_status.h"
#include "tools/bpr/messages.h"
#include "tools/bpr/project_json.h"
#include "tools/bpr/terminal.h"
#include "tools/bpr/write_result.h"

#include <cstring>

namespace pellux {
namespace {

constexpr const char* k_program = "bpr";
/// Bytes of a JSON document; a project of 10,000 sources takes less than 10 MB.
constexpr std::size_t k_json_max = std::size_t{256} << 20;

int print(const String& text) {
    const SystemError problem = write_handle(standard_output(), std::as_bytes(std::span(text)));
    if (!failed(problem))
        return k_status_done;
    tell(msg_bpr_cannot_write, "standard output", error_text(problem).c_str());
    return k_status_unusable;
}

int help() {
    String text = format_message(msg_bpr_usage, k_program) + "\n";
    for (Message<>* line : {&msg_help_show, &msg_help_make, &msg_help_compile, &msg_help_status,
                            &msg_help_compiler_status})
        text += format_message(*line) + "\n";
    return print(text);
}

int show(const char* file) {
    ProjectHeader header;
    const Owned<Project> project = read_project(file, header);
    return project == nullptr ? k_status_unusable : print(project_to_json(*project, header));
}

bool read_json_file(const char* path, String& text) {
    SystemError problem{};
    switch (read_text_file(path, k_json_max, text, problem)) {
    case TextFileStatus::read:
        return true;
    case TextFileStatus::too_large:
        tell(msg_too_large, path);
        return false;
    case TextFileStatus::failed:
        tell(msg_bpr_cannot_read, path, error_text(problem).c_str());
        return false;
    }
    return false;
}

bool is_same_file(std::string_view one, std::string_view other) {
    FileStat first;
    FileStat second;
    return !failed(stat_file(one, first)) && !failed(stat_file(other, second)) &&
           first.device == second.device && first.inode == second.inode;
}

int make(const char* json_file, const char* file) {
    if (is_same_file(json_file, file)) {
        tell(msg_same_file, file, json_file);
        return k_status_unusable;
    }
    String text;
    ProjectHeader header;
    if (!read_json_file(json_file, text))
        return k_status_unusable;
    const Owned<Project> project = project_from_json(view(text), json_file, header);
    text = {}; // may be much larger than the project
    if (project == nullptr || !tell_write_result(write_project_as(*project, file, header), file))
        return k_status_unusable;
    return k_status_done;
}

int run(std::span<const char* const> arguments) {
    const auto is = [&](std::size_t at, const char* word) {
        return at < arguments.size() && std::strcmp(arguments[at], word) == 0;
    };
    if ((is(0, "--help") || is(0, "-h")) && arguments.size() == 1)
        return help();
    if (is(0, "show") && arguments.size() == 2)
        return show(arguments[1]);
    if (is(0, "make") && arguments.size() == 3)
        return make(arguments[1], arguments[2]);
    if (is(0, "compile") && arguments.size() == 2)
        return compile_project_file(arguments[1], nullptr);
    if (is(0, "compile") && arguments.size() > 3 && is(2, "--selected")) {
        const std::span<const char* const> selected = arguments.subspan(3);
        return compile_project_file(arguments[1], &selected);
    }
    tell(msg_bpr_usage, k_program);
    return k_status_unusable;
}

} // namespace
} // namespace pellux

int main(int argc, char** argv) {
    pellux::make_size_limit_an_error();
    // Whatever a file's texts hold, they do not steer the terminal that shows the message.
    static pellux::Terminal s_errors(pellux::standard_errors());
    pellux::reporter().output = [](void* context, std::string_view text) {
        auto& terminal = pellux::from_context<pellux::Terminal>(context);
        terminal.write(text);
        terminal.end_line();
    };
    pellux::reporter().output_context = &s_errors;
    pellux::start_diagnostics(pellux::k_program);
    const std::span<const char* const> arguments(argv, static_cast<std::size_t>(argc));
    return pellux::run(arguments.subspan(argc > 0 ? 1 : 0));
}
