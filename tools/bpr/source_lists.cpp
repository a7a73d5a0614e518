#include "tools/bpr/source_lists.h"

#include "core/common/ascii_case.h"
#include "core/common/blanks.h"
#include "core/common/lexical_path.h"
#include "core/common/text_file.h"
#include "core/diagnostics/reporter.h"
#include "core/os/ascii.h"
#include "core/os/environment.h"
#include "core/os/files.h"
#include "core/vhdl/library_name.h"
#include "tools/bpr/messages.h"

#include <algorithm>
#include <utility>

namespace pellux {
namespace {

constexpr std::size_t k_list_max = std::size_t{64} << 20;
constexpr std::size_t k_depth_max = 100; ///< of lists in lists
constexpr int k_lists_max = 10'000;      ///< read in all: some may be named again and again

bool is_blank(char c) {
    return c == ' ' || c == '\t';
}

bool is_in_name(char c) {
    return is_ascii_letter(c) || is_ascii_digit(c) || c == '_';
}

/// One line of a list.
struct Line {
    std::string_view rest;
    String fault; ///< empty: none

    bool next(String& word, bool& is_quoted);

private:
    void take_variable(String& word);
    [[nodiscard]] bool is_comment() const;
};

/// "#", "//" or "--" where a word could begin; a letter behind the latter makes it an option.
bool Line::is_comment() const {
    return rest.starts_with('#') || rest.starts_with("//") ||
           (rest.starts_with("--") && (rest.size() == 2 || !is_ascii_letter(rest[2])));
}

/// $NAME, ${NAME} or $(NAME).
void Line::take_variable(String& word) {
    rest.remove_prefix(1);
    const char open = rest.empty() ? '\0' : rest.front();
    const char close = open == '{' ? '}' : open == '(' ? ')' : '\0';
    std::size_t size = 0;
    if (close != '\0') {
        rest.remove_prefix(1);
        size = rest.find(close);
    } else {
        while (size < rest.size() && is_in_name(rest[size]))
            ++size;
    }
    if (size == std::string_view::npos || size == 0) {
        fault = format_message(msg_list_variable_name);
        return;
    }
    const String name(rest.substr(0, size));
    rest.remove_prefix(size + (close != '\0' ? 1 : 0));
    if (const char* value = environment_variable(name.c_str()))
        word += value;
    else
        fault = format_message(msg_list_variable, name.c_str());
}

/// False at the line's end, or at a fault. A word that begins with a quote is a name, whatever it
/// looks like.
bool Line::next(String& word, bool& is_quoted) {
    word.clear();
    is_quoted = false;
    while (!rest.empty() && is_blank(rest.front()))
        rest.remove_prefix(1);
    if (rest.empty() || is_comment())
        return false;
    while (!rest.empty() && !is_blank(rest.front()) && fault.empty()) {
        const char c = rest.front();
        if (c == '$') {
            take_variable(word);
            continue;
        }
        if (c != '"' && c != '\'') {
            const std::size_t end = std::min(rest.find_first_of(" \t\"'$"), rest.size());
            word += rest.substr(0, end);
            rest.remove_prefix(end);
            continue;
        }
        rest.remove_prefix(1);
        is_quoted = is_quoted || word.empty();
        const std::size_t end = rest.find(c);
        if (end == std::string_view::npos) {
            fault = format_message(msg_list_quote);
            break;
        }
        word += rest.substr(0, end);
        rest.remove_prefix(end + 1);
    }
    return fault.empty();
}

/// What a word that looks like an option asks for.
struct ListOption {
    std::string_view words[2];
    ListWordKind kind;
};
constexpr ListOption k_list_options[] = {{{"-f", "-F"}, ListWordKind::list},
                                         {{"-work", "--work"}, ListWordKind::library}};

const ListOption* find_option(std::string_view word) {
    const auto found = std::ranges::find_if(k_list_options, [&](const ListOption& option) {
        return std::ranges::find(option.words, word) != std::end(option.words);
    });
    return found != std::end(k_list_options) ? found : nullptr;
}

/// The words of one line; a fault, or nothing.
String parse_line(std::string_view text, int number, Vector<ListWord>& words) {
    Line line{text, {}};
    String word;
    bool is_quoted = false;
    const ListOption* option = nullptr; ///< that awaits its operand
    String option_word;
    while (line.next(word, is_quoted)) {
        std::string_view name = view(word);
        ListWordKind kind = ListWordKind::file;
        if (option != nullptr) {
            kind = std::exchange(option, nullptr)->kind;
        } else if (!is_quoted && (name.starts_with('-') || name.starts_with('+'))) {
            const std::size_t equals = std::min(name.find('='), name.size());
            option = find_option(name.substr(0, equals));
            if (option == nullptr)
                return format_message(msg_list_option, word.c_str());
            if (equals == name.size()) {
                option_word = word;
                continue;
            }
            kind = std::exchange(option, nullptr)->kind;
            name.remove_prefix(equals + 1);
        } else if (!is_quoted && name.size() > 1 && name.starts_with('@')) {
            kind = ListWordKind::list;
            name.remove_prefix(1);
        }
        words.push_back({kind, String(name), number});
        if (kind == ListWordKind::library) {
            if (String fault = library_fault(name); !fault.empty())
                return fault;
        }
    }
    if (line.fault.empty() && option != nullptr)
        return format_message(msg_list_operand, option_word.c_str());
    return line.fault;
}

struct ListReader {
    Vector<NamedFile>& files;
    Vector<FileStat> open{}; ///< the list that is read, behind those that name it
    int lists = 0;           ///< read so far
};

/// A name in a list counts from the list's directory.
String path_in_list(std::string_view list, std::string_view name) {
    const std::string_view directory = directory_part(list);
    return name.starts_with('/') || directory.empty() ? String(name) : joined_path(directory, name);
}

bool read_list(ListReader& reader, const NamedFile& list);

bool take_words(ListReader& reader, const NamedFile& list, const Vector<ListWord>& words) {
    String library = list.library;
    for (const ListWord& word : words) {
        NamedFile named{path_in_list(view(list.path), view(word.text)), library, list.path,
                        word.line};
        switch (word.kind) {
        case ListWordKind::library:
            library = word.text;
            break;
        case ListWordKind::file:
            reader.files.push_back(std::move(named));
            break;
        case ListWordKind::list:
            if (!read_list(reader, named))
                return false;
            break;
        }
    }
    return true;
}

bool read_list(ListReader& reader, const NamedFile& list) {
    String text;
    SystemError error = SystemError::none;
    if (++reader.lists > k_lists_max)
        return tell_fault(list, format_message(msg_list_many, k_lists_max));
    switch (read_text_file(view(list.path), k_list_max, text, error)) {
    case TextFileStatus::read:
        break;
    case TextFileStatus::too_large:
        return tell_fault(list, format_message(msg_too_large, list.path.c_str()));
    case TextFileStatus::failed:
        return tell_fault(list, format_message(msg_bpr_cannot_read, list.path.c_str(),
                                               error_text(error).c_str()));
    }
    FileStat stat;
    static_cast<void>(stat_file(view(list.path), stat));
    const bool is_loop = std::ranges::any_of(reader.open, [&](const FileStat& other) {
        return other.device == stat.device && other.inode == stat.inode;
    });
    if (is_loop || reader.open.size() == k_depth_max)
        return tell_fault(list, format_message(msg_list_loop, list.path.c_str()));
    Vector<ListWord> words;
    if (const String fault = parse_source_list(view(text), words); !fault.empty())
        return tell_fault({{}, {}, list.path, words.back().line}, fault);
    reader.open.push_back(stat);
    const bool taken = take_words(reader, list, words);
    reader.open.pop_back();
    return taken;
}

} // namespace

String parse_source_list(std::string_view text, Vector<ListWord>& words) {
    constexpr std::string_view k_mark = "\xEF\xBB\xBF";
    if (text.starts_with(k_mark))
        text.remove_prefix(k_mark.size());
    for (int number = 1; !text.empty(); ++number) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = trim_blanks(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        const bool is_text = std::ranges::none_of(
            line, [](char c) { return static_cast<unsigned char>(c) < ' ' && c != '\t'; });
        const String fault =
            is_text ? parse_line(line, number, words) : format_message(msg_list_binary);
        if (!fault.empty()) {
            words.push_back({ListWordKind::file, {}, number});
            return fault;
        }
    }
    return {};
}

bool read_source_words(std::span<const char* const> words, Vector<NamedFile>& files) {
    ListReader reader{files};
    for (const std::string_view word : words) {
        if (word.size() < 2 || !word.starts_with('@'))
            files.push_back({String(word), {}, {}, 0});
        else if (!read_list(reader, {String(word.substr(1)), {}, {}, 0}))
            return false;
    }
    return true;
}

bool tell_fault(const NamedFile& at, const String& what) {
    const String place =
        at.list.empty() ? String() : format_message(msg_list_place, at.list.c_str(), at.line);
    tell(msg_list_fault, place.c_str(), what.c_str());
    return false;
}

String library_fault(std::string_view name) {
    if (!is_library_name(name))
        return format_message(msg_edit_library, String(name).c_str());
    if (is_reserved_library(view(lower_case(name))))
        return format_message(msg_edit_reserved, String(name).c_str());
    return {};
}

} // namespace pellux
