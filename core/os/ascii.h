#pragma once

#include <algorithm>
#include <string_view>

namespace pellux {

// ASCII letters and digits; other bytes are nobody's letters, whatever their encoding.

[[nodiscard]] constexpr bool is_ascii_digit(char c) {
    return c >= '0' && c <= '9';
}

[[nodiscard]] constexpr bool is_ascii_letter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

[[nodiscard]] constexpr char ascii_lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

[[nodiscard]] constexpr char ascii_upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

[[nodiscard]] constexpr bool same_ignoring_case(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return ascii_lower(x) == ascii_lower(y); });
}

} // namespace pellux
