#pragma once

#include "core/text/text_document.h"

#include <cstddef>
#include <span>

namespace pellux {

/// The longest piece of a line that is read at once, in bytes.
inline constexpr std::size_t k_line_piece_bytes = 512;

/// Walks a text line by line, forwards or backwards. The first step gives the line of the place
/// where the walk begins, each one after it the next or the previous. A line of more bytes than a
/// piece has comes in several, cut at the same places in both directions, with one line number.
/// What is in it tells of the piece read last. The text must not change meanwhile.
struct LineReader {
    const TextDocument* document = nullptr;
    std::int64_t line = 0;
    ByteOffset line_start = 0;
    ByteOffset piece_start = 0;
    std::size_t piece_bytes = 0; ///< without the line end
    bool is_line_end = false;    ///< its line ends with it
    bool has_begun = false;
    TextPoint behind_piece; ///< and behind its line end
};

/// Begins a walk at an offset.
[[nodiscard]] LineReader read_lines_from(const TextDocument& document, ByteOffset offset);
/// Begins it at the start of a line; the last one where there are not that many.
[[nodiscard]] LineReader read_lines(const TextDocument& document, std::int64_t line);

/// Copies the next piece, `reader.piece_bytes` of it; false behind the last one.
[[nodiscard]] bool read_next(LineReader& reader, std::span<char, k_line_piece_bytes> buffer);
/// The same for the piece before; false before the first one.
[[nodiscard]] bool read_previous(LineReader& reader, std::span<char, k_line_piece_bytes> buffer);

} // namespace pellux
