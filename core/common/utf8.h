#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace pellux {

/// Whether a UTF-8 byte goes on with the character before it.
[[nodiscard]] constexpr bool is_continuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

[[nodiscard]] constexpr std::size_t count_characters(std::string_view text) {
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char byte) { return !is_continuation(byte); }));
}

/// The first `count` characters.
[[nodiscard]] constexpr std::string_view first_characters(std::string_view text,
                                                          std::size_t count) {
    std::size_t length = 0;
    for (; length < text.size(); ++length)
        if (!is_continuation(text[length]) && count-- == 0)
            break;
    return text.substr(0, length);
}

/// Bytes of the character at the front of `text`; 0 where none stands that is UTF-8: a form longer
/// than needed, a surrogate, a number over 0x10FFFF, one that is cut off, or nothing at all.
[[nodiscard]] std::size_t utf8_length(std::string_view text);

/// Is all of it UTF-8? ASCII and the empty text are.
[[nodiscard]] bool is_utf8(std::string_view text);

} // namespace pellux
