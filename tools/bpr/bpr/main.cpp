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

using Words = std::span<const char* const>;

int compile(Words words) {
    const Words selected = words.subspan(words.size() > 1 ? 2 : 1);
    return compile_project_file(words[0], words.size() > 1 ? &selected : nullptr);
}

/// Words that come behind the command.
struct Command {
    std::string_view name;
    const char* arguments;
    Message<>& line;
    bool (*fits)(Words);
    int (*run)(Words);
    Message<>* more = nullptr; ///< of its help
};

template <std::size_t count>
bool has(Words words) {
    return words.size() == count;
}
template <std::size_t count>
bool has_at_least(Words words) {
    return words.size() >= count;
}

const Command k_commands[] = {
    {"new", "FILE SOURCE... [--top NAME] [--library NAME] [--standard N] [--device NAME]",
     msg_help_new, has_at_least<2>,
     [](Words words) { return new_project_file(words[0], words.subspan(1)); }, &msg_help_lists},
    {"add", "FILE SOURCE... [--library NAME]", msg_help_add, has_at_least<2>,
     [](Words words) { return add_sources(words[0], words.subspan(1)); }, &msg_help_lists},
    {"remove", "FILE NAME...", msg_help_remove, has_at_least<2>,
     [](Words words) { return remove_named_sources(words[0], words.subspan(1)); }},
    {"set", "FILE [--source NAME]... KEY=VALUE...", msg_help_set, has_at_least<2>,
     [](Words words) { return set_options(words[0], words.subspan(1)); }, &msg_help_keys},
    {"show", "FILE", msg_help_show, has<1>, [](Words words) { return show_project(words[0]); }},
    {"make", "JSON FILE", msg_help_make, has<2>,
     [](Words words) { return make_project(words[0], words[1]); }},
    {"compile", "FILE [--selected NAME...]", msg_help_compile,
     [](Words words) {
         return words.size() == 1 || (words.size() > 2 && std::strcmp(words[1], "--selected") == 0);
     },
     compile, &msg_help_compiler_status},
};

/// Prints the help of one command, or of all without a name, and gives the program's status;
/// nothing when there is no such command.
std::optional<int> help(std::string_view command) {
    String text;
    String more = format_message(msg_help_status) + "\n";
    if (command.empty())
        text = format_message(msg_bpr_usage, k_program) + "\n";
    for (const Command& row : k_commands) {
        if (row.name == command)
            text =
                format_message(msg_bpr_command_usage, k_program, row.name.data(), row.arguments) +
                "\n";
        else if (!command.empty())
            continue;
        text += format_message(row.line) + "\n";
        if (row.more != nullptr && more.find(row.more->text()) == String::npos)
            more += format_message(*row.more) + "\n";
    }
    if (text.empty())
        return std::nullopt;
    Terminal output(standard_output());
    output.write(view(text + more));
    return status_after_output(output.error());
}

bool is_help(Words words) {
    return words.size() == 1 &&
           (std::strcmp(words[0], "--help") == 0 || std::strcmp(words[0], "-h") == 0);
}

int run(Words words) {
    if (is_help(words))
        return *help({});
    if (words.size() > 1 && is_help(words.subspan(1))) {
        if (const std::optional<int> status = help(words[0]))
            return *status;
    }
    for (const Command& command : k_commands) {
        if (!words.empty() && command.name == words[0] && command.fits(words.subspan(1)))
            return command.run(words.subspan(1));
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
