#pragma once

#include "core/text/text_pattern.h"
#include "core/text/text_words.h"

#include <optional>

namespace pellux {

// Matches of a pattern in a text. They may overlap, and none goes over a line end. The bytes before
// and behind a match, which a whole word depends on, are those of the whole text.

/// The first match that begins in a range of the text, the last one for a search backwards. Ranges
/// that touch make up a search that is done in steps.
[[nodiscard]] std::optional<TextRange> find_in(const TextDocument& document,
                                               const SearchPattern& pattern, TextRange range);

/// The first match that begins at an offset or behind it; backwards, the last one that ends there
/// or before it.
[[nodiscard]] std::optional<TextRange> find_from(const TextDocument& document,
                                                 const SearchPattern& pattern, ByteOffset offset);

/// Where the matches begin that begin in a range, from the first to the last.
[[nodiscard]] Vector<ByteOffset> find_all(const TextDocument& document,
                                          const SearchPattern& pattern, TextRange range);

/// Is the character before, or at, an offset a letter or a digit?
[[nodiscard]] bool word_ends_at(const TextDocument& document, ByteOffset offset);
[[nodiscard]] bool word_begins_at(const TextDocument& document, ByteOffset offset);

} // namespace pellux
