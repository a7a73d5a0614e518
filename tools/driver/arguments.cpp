#include "tools/driver/arguments.h"

#include "core/common/text_file.h"
#include "tools/driver/messages.h"
#include "tools/driver/reporting.h"

namespace pellux {

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

bool parse_channel(std::string_view digits, std::uint64_t& channel) {
    const auto address = number_of<std::uint64_t>(digits);
    if (!address || *address == 0)
        return false;
    channel = *address;
    return true;
}

Failure read_response(const String& file, Vector<String>& words) {
    String text;
    SystemError error = SystemError::none;
    const TextFileStatus status = read_text_file(view(file), k_response_max, text, error);
    if (status != TextFileStatus::read)
        return unreadable(ExitStatus::arguments, file, status, error);
    if (!split_response(view(text), words))
        return {ExitStatus::arguments, format_message(msg_damaged_response, file.c_str())};
    return {};
}

} // namespace pellux
