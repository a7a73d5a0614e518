#pragma once

#include "core/text/text_words.h"

#include <optional>
#include <utility>

namespace pellux {

/// So far from the caret a partner is looked for, in bytes.
inline constexpr ByteOffset k_parenthesis_reach = 65536;

/// The parenthesis or bracket beside an offset, the one before it first, and its partner; those in
/// comments, strings and literals are none. Nothing where there is no such pair.
[[nodiscard]] std::optional<std::pair<ByteOffset, ByteOffset>>
find_parentheses(const TextDocument& document, ByteOffset at);

} // namespace pellux
