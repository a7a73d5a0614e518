#pragma once

#include "core/text/text_document.h"

namespace pellux {

// Words: letters, digits and '_', with every byte over 127; each other run of characters of one
// kind, of blanks or of signs, is a stretch of its own. A line end stands alone.

struct TextRange {
    ByteOffset start = 0;
    ByteOffset end = 0;

    bool operator==(const TextRange&) const = default;
};

/// The stretch that the character at an offset belongs to; at the end of a line the one before,
/// empty in an empty line.
[[nodiscard]] TextRange word_at(const TextDocument& document, ByteOffset offset);
/// The start of the next stretch that is no blanks, also on a later line; the end of the text.
[[nodiscard]] ByteOffset next_word(const TextDocument& document, ByteOffset offset);
/// The start of the stretch before the offset that is no blanks.
[[nodiscard]] ByteOffset previous_word(const TextDocument& document, ByteOffset offset);

} // namespace pellux
