#include "core/library/rc_file.h"

#include "core/common/ascii_case.h"
#include "core/common/callback.h"

#include <algorithm>

namespace pellux {
namespace {

constexpr std::string_view k_blanks = " \t\n\v\f\r";

/// Takes the next word off `text`; empty when there is none.
std::string_view take_word(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(k_blanks), text.size()));
    const std::string_view word = text.substr(0, text.find_first_of(k_blanks));
    text.remove_prefix(word.size());
    return word;
}

/// Does the whole line `line` assign a directory to a library?
bool assigns(std::string_view line, std::string_view& library, std::string_view& directory) {
    if (line.starts_with('#'))
        return false;
    // No directory's name holds a NUL.
    line = line.substr(0, line.find('\0'));
    library = take_word(line);
    directory = take_word(line);
    return !directory.empty();
}

struct Wanted {
    std::string_view library;
    String& directory;
    bool found = false;
};

} // namespace

RcFile parse_rc_file(std::string_view text) {
    RcFile file;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const bool is_whole = end <= k_rc_piece;
        const std::size_t size = is_whole ? std::min(end + 1, text.size()) : k_rc_piece;
        file.lines.emplace_back(text.substr(0, size));
        text.remove_prefix(size);
    }
    return file;
}

TextFileStatus read_rc_file(RcFile& file, SystemError& error) {
    String text;
    const TextFileStatus status = read_text_file(k_rc_file, k_rc_file_max, text, error);
    if (status == TextFileStatus::failed && is_missing(error)) {
        file = {};
        return TextFileStatus::read;
    }
    if (status == TextFileStatus::read)
        file = parse_rc_file(view(text));
    return status;
}

void for_each_assignment(const RcFile& file, void* context, AssignmentVisitor visit) {
    // A line is judged as a whole: the piece behind a comment's or a directory's first 150 bytes
    // would be read as an assignment that nobody wrote.
    String line;
    for (std::size_t i = 0; i < file.lines.size(); ++i) {
        line += file.lines[i];
        if (!line.ends_with('\n') && i + 1 < file.lines.size())
            continue;
        std::string_view library;
        std::string_view directory;
        if (assigns(view(line), library, directory) && !visit(context, library, directory))
            return;
        line.clear();
    }
}

bool find_assigned_directory(const RcFile& file, std::string_view library, String& directory) {
    Wanted wanted{library, directory};
    for_each_assignment(file, &wanted,
                        [](void* context, std::string_view name, std::string_view place) {
                            auto& sought = from_context<Wanted>(context);
                            sought.found = same_ignoring_case(name, sought.library);
                            if (sought.found)
                                sought.directory = place;
                            return !sought.found;
                        });
    return wanted.found;
}

} // namespace pellux
