#include "tools/driver/compile/options.h"

#include "core/common/text_file.h"
#include "tools/driver/libraries/library_name.h"
#include "tools/driver/messages.h"

#include <array>
#include <charconv>
#include <optional>

namespace pellux {
namespace {

enum class SwitchKind {
    library,
    top,
    only_changed,
    no_banner,
    version,
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

struct StandardRow {
    std::string_view number;
    VhdlStandard standard;
};

constexpr std::array k_standards{
    StandardRow{"87", VhdlStandard::vhdl_87},
    StandardRow{"93", VhdlStandard::vhdl_93},
    StandardRow{"2", VhdlStandard::vhdl_2002},
    StandardRow{"8", VhdlStandard::vhdl_2008},
};

const SwitchRow* find_switch(std::string_view word) {
    for (const SwitchRow& row : k_switches) {
        if (word.starts_with(row.letters) &&
            (row.operand != Operand::none || word.size() == row.letters.size()))
            return &row;
    }
    return nullptr;
}

template <typename Number>
std::optional<Number> number_of(std::string_view digits) {
    Number number = 0;
    const char* end = digits.data() + digits.size();
    const auto [rest, error] = std::from_chars(digits.data(), end, number);
    if (error != std::errc{} || rest != end || number < 0)
        return std::nullopt;
    return number;
}

struct Parser {
    Options& options;
    ResponseReader reader;
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
        options.fitting.emplace_back(word);
        return {};
    }
    return {};
}

Failure take_word(Parser& parser, std::string_view word);

Failure take_response(Parser& parser, std::string_view name) {
    const String file(name);
    Vector<String> words;
    if (Failure failure = read_response(parser.reader, file, words))
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

Failure take_word(Parser& parser, std::string_view word) {
    Options& options = parser.options;
    if (word.empty())
        return bad(format_message(msg_empty_argument));
    if (parser.awaits_top) {
        if (!options.top.empty())
            return bad(format_message(msg_second_top, String(word).c_str()));
        options.top = word;
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
    options.files.push_back({String(word), parser.library.empty() ? String(k_work_library)
                                                                  : std::move(parser.library)});
    parser.library.clear();
    parser.library_switch.clear();
    return {};
}

bool read_response_from_disk(void*, std::string_view name, String& text, String& reason) {
    SystemError error = SystemError::none;
    switch (read_text_file(name, k_response_max, text, error)) {
    case TextFileStatus::read:
        return true;
    case TextFileStatus::too_large:
        reason = format_message(msg_file_too_large);
        return false;
    case TextFileStatus::failed:
        reason = error_text(error);
        return false;
    }
    return false;
}

} // namespace

Failure parse_arguments(std::span<const char* const> words, ResponseReader reader,
                        Options& options) {
    Parser parser{options, reader, {}, {}};
    for (const char* word : words) {
        if (Failure failure = take_word(parser, word))
            return failure;
    }
    if (parser.awaits_top)
        return bad(format_message(msg_switch_needs_file, "-b"));
    if (!parser.library_switch.empty())
        return bad(format_message(msg_switch_needs_file, parser.library_switch.c_str()));
    if (options.files.empty() && options.top.empty() && !options.version)
        return bad(format_message(msg_nothing_to_compile));
    return {};
}

bool find_standard(std::string_view number, VhdlStandard& standard) {
    for (const StandardRow& known : k_standards) {
        if (known.number == number) {
            standard = known.standard;
            return true;
        }
    }
    return false;
}

bool parse_channel(std::string_view digits, std::uint64_t& channel) {
    const auto address = number_of<std::uint64_t>(digits);
    if (!address || *address == 0)
        return false;
    channel = *address;
    return true;
}

bool split_response(std::string_view text, Vector<String>& words) {
    bool in_word = false;
    bool in_quotes = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        char c = text[i];
        if (c == '\0')
            return false;
        if (!in_quotes && (c == ' ' || c == '\t' || c == '\n' || c == '\r')) {
            in_word = false;
            continue;
        }
        if (!in_word)
            words.emplace_back();
        in_word = true;
        if (c == '"') {
            in_quotes = !in_quotes;
            continue;
        }
        if (in_quotes && c == '\\' && i + 1 < text.size() &&
            (text[i + 1] == '"' || text[i + 1] == '\\'))
            c = text[++i];
        words.back() += c;
    }
    return !in_quotes;
}

Failure read_response(ResponseReader reader, const String& file, Vector<String>& words) {
    String text;
    String reason;
    if (!reader.read(reader.context, view(file), text, reason))
        return bad(format_message(msg_cannot_read, file.c_str(), reason.c_str()));
    if (!split_response(view(text), words))
        return bad(format_message(msg_damaged_response, file.c_str()));
    return {};
}

ResponseReader disk_response_reader() {
    return {read_response_from_disk, nullptr};
}

} // namespace pellux
