#pragma once

#include "core/common/containers.h"

#include <optional>
#include <string_view>

namespace pellux {

/// How the bytes of a text become characters.
enum class TextEncoding {
    latin_1, ///< one byte, one character
    utf_8,
};

/// The bytes of a code point, in `bytes`; none for a surrogate and what lies over 0x10FFFF.
[[nodiscard]] std::string_view encode_utf_8(char32_t character, char (&bytes)[4]);

/// A letter of Latin-1 beyond ASCII in the given case; any other character as it is, and so are the
/// two letters that have no other case there.
[[nodiscard]] constexpr char latin_1_in_case(char c, bool to_upper) {
    constexpr unsigned char k_case = 0x20;
    const auto lower = static_cast<unsigned char>(static_cast<unsigned char>(c) | k_case);
    if (lower < 0xE0 || lower == 0xF7 || lower == 0xFF)
        return c;
    return static_cast<char>(to_upper ? lower & ~k_case : lower);
}

[[nodiscard]] String latin_1_to_utf_8(std::string_view text);
/// Nothing when a character is not in Latin-1. Bytes that are no UTF-8 stay as they are.
[[nodiscard]] std::optional<String> utf_8_to_latin_1(std::string_view text);

} // namespace pellux
