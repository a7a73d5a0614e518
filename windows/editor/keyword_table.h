#pragma once

#include <cstddef>
#include <string_view>

namespace pellux {

// The reserved words that are highlighted, one table for the program. They come from `vhdl.tok`
// (docs/formats.md) in "bin" of the installation, or in the current directory where no installation
// is named.

/// The shortest word that is too long to be a keyword, in bytes.
inline constexpr std::size_t k_keyword_bytes = 100;

/// Reads the table unless it is there. Without a good file there are no keywords, and the next call
/// tries again.
bool load_keywords();
/// Did they fail to load, which nobody was told yet? True once in the program's life.
[[nodiscard]] bool must_warn_of_keywords();
/// Is this word, in any case of its ASCII letters, a keyword?
[[nodiscard]] bool is_keyword(std::string_view word);
/// As before the first loading. For tests.
void forget_keywords();

} // namespace pellux
