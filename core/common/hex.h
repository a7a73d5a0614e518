#pragma once

#include "core/common/containers.h"

#include <string_view>

namespace pellux {

/// Appends two hexadecimal digits in lower case.
inline void append_hex(String& to, unsigned char byte) {
    constexpr std::string_view k_digits = "0123456789abcdef";
    to += k_digits[byte >> 4];
    to += k_digits[byte & 15];
}

/// Value of a hexadecimal digit of either case; 16 for another character.
[[nodiscard]] constexpr unsigned hex_value(char c) {
    if (c >= '0' && c <= '9')
        return static_cast<unsigned>(c - '0');
    if (c >= 'a' && c <= 'f')
        return static_cast<unsigned>(c - 'a') + 10;
    if (c >= 'A' && c <= 'F')
        return static_cast<unsigned>(c - 'A') + 10;
    return 16;
}

} // namespace pellux
