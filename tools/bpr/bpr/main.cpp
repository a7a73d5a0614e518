#include "core/common/callback.h"
#include "core/diagnostics/catalogue.h"
#include "core/diagnostics/reporter.h"
#include "core/os/files.h"
#include "core/os/process.h"
#include "tools/bpr/commands.h"
#include "tools/bpr/messages.h"
#include "tools/bpr/terminal.h"

#include <cstring>
#include <optional>

namespace pellux {
namespace {

constexpr const char* k_program = "bpr";

struct CommandHelp {
    std::string_view name;
    const char* arguments;
    Message<>& line;
    Message<>* more_statuses; ///< null: none
};

const CommandHelp k_commands[] = {
    {"show", "FILE", msg_help_show, nullptr},
    {"make", "JSON FILE", msg_help_make, nullptr},
    {"compile", "FILE [--selected NAME...]", msg_help_compile, &msg_help_compiler_status},
};

/// Prints the help of one command, or of all without a name, and gives the program's status;
/// nothing when there is no such command.
std::optional<int> help(std::string_view command) {
    String text;
    String statuses = format_message(msg_help_status) + "\n";
    if (command.empty())
        text = format_message(msg_bpr_usage, k_program) + "\n";
    for (const CommandHelp& row : k_commands) {
        if (row.name == command)
            text =
                format_message(msg_bpr_command_usage, k_program, row.name.data(), row.arguments) +
                "\n";
        else if (!command.empty())
            continue;
        text += format_message(row.line) + "\n";
        if (row.more_statuses != nullptr)
            statuses += format_message(*row.more_statuses) + "\n";
    }
    if (text.empty())
        return std::nullopt;
    Terminal output(standard_output());
    output.write(view(text + statuses));
    return status_after_output(output.error());
}

int run(std::span<const char* const> arguments) {
    const auto is = [&](std::size_t at, const char* word) {
        return at < arguments.size() && std::strcmp(arguments[at], word) == 0;
    };
    const auto is_help = [&](std::size_t at) { return is(at, "--help") || is(at, "-h"); };
    if (arguments.size() == 1 && is_help(0))
        return *help({});
    if (arguments.size() == 2 && is_help(1))
        if (const std::optional<int> status = help(arguments[0]))
            return *status;
    if (is(0, "show") && arguments.size() == 2)
        return show_project(arguments[1]);
    if (is(0, "make") && arguments.size() == 3)
        return make_project(arguments[1], arguments[2]);
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
