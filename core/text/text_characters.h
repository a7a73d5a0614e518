#pragma once

#include "core/text/text_document.h"

namespace pellux {

// Characters of a text: bytes in Latin-1, code points in UTF-8. A byte that goes on no character of
// UTF-8 belongs to the one before it, or to the start of its line, so that any bytes have
// characters, and counting them is counting bytes.

/// A line and a column of it in characters, both from 0.
struct TextPlace {
    std::int64_t line = 0;
    std::int64_t column = 0;

    bool operator==(const TextPlace&) const = default;
};

[[nodiscard]] TextPlace place_at(const TextDocument& document, ByteOffset offset);
/// The offset of a place; beyond the end of its line it is that end, beyond the last line the end
/// of the text.
[[nodiscard]] ByteOffset offset_at(const TextDocument& document, const TextPlace& place);

/// Where the character at an offset ends; the end of the text for the end of the text.
[[nodiscard]] ByteOffset next_character(const TextDocument& document, ByteOffset offset);
/// Where the character before an offset begins.
[[nodiscard]] ByteOffset previous_character(const TextDocument& document, ByteOffset offset);
/// The offset that many characters further on, backwards for a negative number.
[[nodiscard]] ByteOffset move_by_characters(const TextDocument& document, ByteOffset offset,
                                            std::int64_t count);
/// The start of the character that holds the byte at an offset.
[[nodiscard]] ByteOffset character_start(const TextDocument& document, ByteOffset offset);

} // namespace pellux
