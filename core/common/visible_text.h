#pragma once

#include "core/common/containers.h"

#include <string_view>

namespace pellux {

// Texts that come from files and child programs, on their way to a reader's eyes: no control
// character reaches a terminal, which would obey it.

/// Characters of such a text that a message shows.
inline constexpr std::size_t k_visible_characters = 200;

/// Appends the character at the front of `text`, which is not empty. A control character (U+0000 to
/// U+001F, U+007F to U+009F) becomes its JSON escape, "\u001b", and a byte that is no UTF-8 "\xf6".
/// Answers how many bytes of `text` that was.
std::size_t append_visible(String& to, std::string_view text);

/// The text so, and "..." in place of what is beyond its first `k_visible_characters` characters.
[[nodiscard]] String visible_text(std::string_view text);

} // namespace pellux
