#include "core/launch/message_line.h"

#include <algorithm>
#include <charconv>

namespace pellux {
namespace {

void skip_blanks(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
}

bool take(std::string_view& text, std::string_view word) {
    skip_blanks(text);
    if (!text.starts_with(word))
        return false;
    text.remove_prefix(word.size());
    return true;
}

bool take_number(std::string_view& text, std::int64_t& number) {
    skip_blanks(text);
    if (text.empty() || text.front() < '0' || text.front() > '9')
        return false;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
    text.remove_prefix(static_cast<std::size_t>(read.ptr - text.data()));
    return read.ec == std::errc();
}

} // namespace

std::optional<MessageLine> parse_message_line(std::string_view line) {
    const std::string_view all = line;
    line = line.substr(0, k_message_line_bytes);
    const std::size_t end = line.find_first_of(" \t");
    if (end == 0 || end == std::string_view::npos)
        return {};
    MessageLine message{.file = line.substr(0, end), .line = 0, .column = 0, .words = {}};
    line.remove_prefix(end);
    if (!take(line, "(line") || !take_number(line, message.line) || !take(line, ",") ||
        !take(line, "col") || !take_number(line, message.column) || !line.starts_with("):"))
        return {};
    message.words = all.substr(static_cast<std::size_t>(line.data() - all.data()) + 2);
    skip_blanks(message.words);
    return message;
}

std::string_view compiling_file(std::string_view line) {
    constexpr std::string_view k_begin = "Compiling '";
    if (!line.starts_with(k_begin))
        return {};
    line.remove_prefix(k_begin.size());
    return line.substr(0, line.find('\''));
}

} // namespace pellux
