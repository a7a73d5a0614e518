#include "core/common/blanks.h"

namespace pellux {

std::string_view trim_blanks(std::string_view text) {
    constexpr std::string_view k_trimmed = " \t\r\n";
    const std::size_t start = text.find_first_not_of(k_trimmed);
    if (start == std::string_view::npos)
        return text.substr(0, 0);
    return text.substr(start, text.find_last_not_of(k_trimmed) + 1 - start);
}

bool next_word(std::string_view& rest, std::string_view& word) {
    constexpr std::string_view k_between = " \t";
    const std::size_t start = rest.find_first_not_of(k_between);
    if (start == std::string_view::npos) {
        rest = {};
        return false;
    }
    word = rest.substr(start);
    word = word.substr(0, word.find_first_of(k_between));
    rest.remove_prefix(start + word.size());
    return true;
}

} // namespace pellux
