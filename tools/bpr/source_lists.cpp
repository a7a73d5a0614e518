#include "tools/bpr/source_lists.h"

#include "core/common/blanks.h"
#include "core/common/lexical_path.h"
#include "core/common/text_file.h"
#include "core/diagnostics/reporter.h"
#include "core/os/environment.h"
#include "core/os/files.h"
#include "tools/bpr/messages.h"

#include <algorithm>

namespace pellux {
namespace {

constexpr std::size_t k_list_max = std::size_t{64} << 20;
constexpr std::size_t k_depth_max = 100; ///< of lists in lists

bool is_blank(char c) {
    return c == ' ' || c == '\t';
}

bool is_in_name(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
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

/// "#", "//" or "--" where a word could begin; the latter not as the begin of a word.
bool Line::is_comment() const {
    return rest.starts_with('#') || rest.starts_with("//") ||
           (rest.starts_with("--") && (rest.size() == 2 || is_blank(rest[2])));
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

/// False at the line's end, or at a fault.
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
        rest.remove_prefix(1);
        if (c != '"' && c != '\'') {
            word += c;
            continue;
        }
        is_quoted = true;
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

/// "# library NAME" says where the files behind it go, though it looks like a comment.
bool is_library_line(std::string_view line, std::string_view& name) {
    std::string_view word;
    if (!line.starts_with('#'))
        return false;
    line.remove_prefix(1);
    return next_word(line, word) && word == "library" && next_word(line, name) &&
           trim_blanks(line).empty();
}

/// The words of one line; a fault, or nothing.
String parse_line(std::string_view text, int number, Vector<ListWord>& words) {
    std::string_view library;
    if (is_library_line(text, library)) {
        words.push_back({ListWordKind::library, String(library), number});
        return {};
    }
    Line line{text, {}};
    String word;
    bool is_quoted = false;
    bool awaits_list = false;
    while (line.next(word, is_quoted)) {
        const bool is_option = !is_quoted && (word.starts_with('-') || word.starts_with('+'));
        if (awaits_list || (!is_quoted && word.size() > 1 && word.starts_with('@'))) {
            words.push_back(
                {ListWordKind::list, awaits_list ? word : String(view(word).substr(1)), number});
            awaits_list = false;
        } else if (is_option && (word == "-f" || word == "-F")) {
            awaits_list = true;
        } else if (is_option) {
            return format_message(msg_list_option, word.c_str());
        } else {
            words.push_back({ListWordKind::file, word, number});
        }
    }
    if (line.fault.empty() && awaits_list)
        return format_message(msg_list_missing);
    return line.fault;
}

struct OpenList {
    String name; ///< as messages call it
    FileStat stat;
};

struct ListReader {
    Vector<NamedFile>& files;
    Vector<OpenList> open; ///< the list that is read, behind those that name it
};

bool complain(const NamedFile& at, const String& what) {
    tell(msg_list_fault, place_of(at).c_str(), what.c_str());
    return false;
}

/// A name in a list counts from the list's directory.
String path_in_list(std::string_view list, std::string_view name) {
    const std::string_view directory = directory_part(list);
    return name.starts_with('/') || directory.empty() ? String(name) : joined_path(directory, name);
}

bool read_list(ListReader& reader, const NamedFile& list);

bool take_words(ListReader& reader, const String& list, const Vector<ListWord>& words) {
    String library;
    for (const ListWord& word : words) {
        NamedFile named{{}, library, list, word.line};
        switch (word.kind) {
        case ListWordKind::library:
            library = word.text;
            break;
        case ListWordKind::file:
            named.path = path_in_list(view(list), view(word.text));
            reader.files.push_back(std::move(named));
            break;
        case ListWordKind::list:
            named.path = path_in_list(view(list), view(word.text));
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
    OpenList open{list.path, {}};
    switch (read_text_file(view(list.path), k_list_max, text, error)) {
    case TextFileStatus::read:
        break;
    case TextFileStatus::too_large:
        return complain(list, format_message(msg_too_large, list.path.c_str()));
    case TextFileStatus::failed:
        return complain(list, format_message(msg_bpr_cannot_read, list.path.c_str(),
                                             error_text(error).c_str()));
    }
    static_cast<void>(stat_file(view(list.path), open.stat));
    const bool is_loop = std::ranges::any_of(reader.open, [&](const OpenList& other) {
        return other.stat.device == open.stat.device && other.stat.inode == open.stat.inode;
    });
    if (is_loop || reader.open.size() == k_depth_max)
        return complain(list, format_message(msg_list_loop, list.path.c_str()));
    Vector<ListWord> words;
    if (const String fault = parse_source_list(view(text), words); !fault.empty())
        return complain({{}, {}, list.path, words.empty() ? 1 : words.back().line}, fault);
    reader.open.push_back(std::move(open));
    const bool taken = take_words(reader, list.path, words);
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
    ListReader reader{files, {}};
    for (const std::string_view word : words) {
        if (word.size() < 2 || !word.starts_with('@'))
            files.push_back({String(word), {}, {}, 0});
        else if (!read_list(reader, {String(word.substr(1)), {}, {}, 0}))
            return false;
    }
    return true;
}

String place_of(const NamedFile& file) {
    return file.list.empty() ? String()
                             : format_message(msg_list_place, file.list.c_str(), file.line);
}

} // namespace pellux
