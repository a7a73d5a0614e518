#include "tools/driver/compile/options.h"

#include "core/vhdl/library_name.h"
#include "tools/driver/arguments.h"
#include "tools/driver/messages.h"

#include <array>
#include <optional>
#include <utility>

namespace pellux {
namespace {

enum class SwitchKind {
    library,
    top,
    only_changed,
    no_banner,
    version,
    help,
    standard,
    error_limit,
    warning_limit,
    channel,
    fitting,
};

/// What follows the switch's own letters.
enum class Operand { none, optional_text, text, number };

struct SwitchRow {
    std::string_view letters;
    Operand operand;
    SwitchKind kind;
};

constexpr std::array k_switches{
    SwitchRow{"-a", Operand::optional_text, SwitchKind::library},
    SwitchRow{"-b", Operand::none, SwitchKind::top},
    SwitchRow{"-m", Operand::none, SwitchKind::only_changed},
    SwitchRow{"-q", Operand::none, SwitchKind::no_banner},
    SwitchRow{"--version", Operand::none, SwitchKind::version},
    SwitchRow{"--help", Operand::none, SwitchKind::help},
    SwitchRow{"-v", Operand::number, SwitchKind::standard},
    SwitchRow{"-e", Operand::number, SwitchKind::error_limit},
    SwitchRow{"-w", Operand::number, SwitchKind::warning_limit},
    SwitchRow{"-%bpipe", Operand::number, SwitchKind::channel},
    SwitchRow{"-d", Operand::text, SwitchKind::fitting},
    SwitchRow{"-p", Operand::text, SwitchKind::fitting},
    SwitchRow{"-o", Operand::number, SwitchKind::fitting},
    SwitchRow{"-f", Operand::text, SwitchKind::fitting},
    SwitchRow{"-y", Operand::text, SwitchKind::fitting},
    SwitchRow{"-xor2", Operand::none, SwitchKind::fitting},
};

const SwitchRow* find_switch(std::string_view word) {
    for (const SwitchRow& row : k_switches) {
        if (word.starts_with(row.letters) &&
            (row.operand != Operand::none || word.size() == row.letters.size()))
            return &row;
    }
    return nullptr;
}

struct Parser {
    Options& options;
    String library;                 ///< of the next file, empty for `work`
    String library_switch;          ///< the `-a` that waits for its file
    bool awaits_top = false;        ///< the word before was `-b`
    const char* response = nullptr; ///< the response file being read
};

Failure bad(String text) {
    return {ExitStatus::arguments, std::move(text)};
}

Failure take_number(std::string_view word, std::string_view digits, int& into) {
    const std::optional<int> number = number_of<int>(digits);
    if (!number)
        return bad(format_message(msg_switch_needs_number, String(word).c_str()));
    into = *number;
    return {};
}

Failure take_switch(Parser& parser, const SwitchRow& row, std::string_view word) {
    Options& options = parser.options;
    const std::string_view operand = word.substr(row.letters.size());
    if (row.operand == Operand::text && operand.empty())
        return bad(format_message(msg_unknown_switch, String(word).c_str()));
    switch (row.kind) {
    case SwitchKind::library:
        if (!parser.library_switch.empty())
            return bad(format_message(msg_switch_needs_file, parser.library_switch.c_str()));
        parser.library = operand;
        parser.library_switch = word;
        return {};
    case SwitchKind::top:
        parser.awaits_top = true;
        return {};
    case SwitchKind::only_changed:
        options.only_changed = true;
        return {};
    case SwitchKind::no_banner:
        options.banner = false;
        return {};
    case SwitchKind::version:
        options.version = true;
        return {};
    case SwitchKind::help:
        options.help = true;
        return {};
    case SwitchKind::standard:
        if (!find_standard(operand, options.standard))
            return bad(format_message(msg_unknown_standard, String(operand).c_str()));
        return {};
    case SwitchKind::error_limit:
        return take_number(word, operand, options.error_limit);
    case SwitchKind::warning_limit:
        return take_number(word, operand, options.warning_limit);
    case SwitchKind::channel:
        if (!parse_channel(operand, options.channel))
            return bad(format_message(msg_switch_needs_number, String(word).c_str()));
        return {};
    case SwitchKind::fitting:
        if (row.operand == Operand::number && !number_of<int>(operand))
            return bad(format_message(msg_switch_needs_number, String(word).c_str()));
        take_rule(word, options.rules);
        options.fitting.emplace_back(word);
        return {};
    }
    return {};
}

Failure take_word(Parser& parser, std::string_view word);

Failure take_response(Parser& parser, std::string_view name) {
    const String file(name);
    Vector<String> words;
    if (Failure failure = read_response(file, words))
        return failure;
    parser.response = file.c_str();
    for (const String& word : words) {
        if (Failure failure = take_word(parser, view(word)))
            return failure;
    }
    parser.response = nullptr;
    return {};
}

/// After `-a` stands its file, so that names which look like a response file, or begin with '-'
/// without being a switch, can be compiled.
bool is_file_of_library(const Parser& parser, std::string_view word) {
    if (parser.library_switch.empty())
        return false;
    if (word.front() != '-')
        return true;
    const SwitchRow* row = find_switch(word);
    if (row == nullptr)
        return true;
    const std::string_view operand = word.substr(row->letters.size());
    return row->kind == SwitchKind::library && !operand.empty() && !is_library_name(operand);
}

/// The name as a project lists it: what guards it from being a switch is no part of it.
String listed_name(std::string_view word) {
    const bool is_guarded = word.starts_with("./-") || word.starts_with("./@");
    return String(is_guarded ? word.substr(2) : word);
}

/// Of the `-a` that stands before a file or `-b`, which ends its reach.
String take_library(Parser& parser) {
    parser.library_switch.clear();
    String library = std::exchange(parser.library, {});
    return library.empty() ? String(k_work_library) : library;
}

Failure take_word(Parser& parser, std::string_view word) {
    Options& options = parser.options;
    if (word.empty())
        return bad(format_message(msg_empty_argument));
    if (parser.awaits_top) {
        if (!options.top.empty())
            return bad(format_message(msg_second_top, String(word).c_str()));
        options.top = listed_name(word);
        options.top_library = take_library(parser);
        parser.awaits_top = false;
        return {};
    }
    if (!is_file_of_library(parser, word)) {
        if (word.front() == '@') {
            if (parser.response != nullptr)
                return bad(
                    format_message(msg_nested_response, parser.response, String(word).c_str()));
            return take_response(parser, word.substr(1));
        }
        if (word.front() == '-') {
            const SwitchRow* row = find_switch(word);
            if (row == nullptr)
                return bad(format_message(msg_unknown_switch, String(word).c_str()));
            return take_switch(parser, *row, word);
        }
    }
    options.files.push_back({listed_name(word), take_library(parser)});
    return {};
}

} // namespace

Failure parse_arguments(std::span<const char* const> words, Options& options) {
    Parser parser{options, {}, {}};
    for (const char* word : words) {
        if (Failure failure = take_word(parser, word))
            return failure;
    }
    if (parser.awaits_top)
        return bad(format_message(msg_switch_needs_file, "-b"));
    if (!parser.library_switch.empty())
        return bad(format_message(msg_switch_needs_file, parser.library_switch.c_str()));
    if (options.files.empty() && options.top.empty() && !options.version && !options.help)
        return bad(format_message(msg_nothing_to_compile));
    return {};
}

Vector<String> named_libraries(const Options& options) {
    Vector<String> names;
    for (const SourceArgument& source : options.files)
        names.push_back(source.library);
    if (!options.top.empty())
        names.push_back(options.top_library);
    return names;
}

} // namespace pellux
