#pragma once

#include "core/common/containers.h"

#include <algorithm>
#include <string_view>

namespace pellux {

// Case of ASCII letters; other bytes are nobody's letters, whatever their encoding.

[[nodiscard]] constexpr char ascii_lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

[[nodiscard]] constexpr char ascii_upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

[[nodiscard]] inline String with_each(char (*change)(char), std::string_view text) {
    String changed(text);
    std::transform(changed.begin(), changed.end(), changed.begin(), change);
    return changed;
}

[[nodiscard]] inline bool same_ignoring_case(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return ascii_lower(x) == ascii_lower(y); });
}

} // namespace pellux
