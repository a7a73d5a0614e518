#pragma once

#include "core/common/containers.h"
#include "core/os/ascii.h"

#include <algorithm>
#include <string_view>

namespace pellux {

/// ASCII letters in lower case, other bytes as they are.
[[nodiscard]] inline String lower_case(std::string_view text) {
    String lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), ascii_lower);
    return lower;
}

[[nodiscard]] inline String upper_case(std::string_view text) {
    String upper(text);
    std::transform(upper.begin(), upper.end(), upper.begin(), ascii_upper);
    return upper;
}

} // namespace pellux
