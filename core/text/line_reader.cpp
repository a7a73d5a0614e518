#include "core/text/line_reader.h"

#include <algorithm>
#include <cstring>

namespace pellux {
namespace {

constexpr auto k_piece = static_cast<ByteOffset>(k_line_piece_bytes);

/// Copies the piece that begins at a point.
void read_piece(LineReader& reader, TextPoint from, std::span<char, k_line_piece_bytes> buffer) {
    reader.piece_bytes = 0;
    reader.is_line_end = false;
    for (;;) {
        const std::string_view text = text_piece(from);
        if (text.empty()) {
            reader.is_line_end = true;
            break;
        }
        const std::size_t room = k_line_piece_bytes - reader.piece_bytes;
        const std::string_view wanted = text.substr(0, room + 1);
        const std::size_t end = wanted.find('\n');
        const std::size_t length = std::min(end, std::min(wanted.size(), room));
        std::memcpy(buffer.data() + reader.piece_bytes, wanted.data(), length);
        reader.piece_bytes += length;
        if (end != std::string_view::npos) {
            reader.is_line_end = true;
            from = behind(from, end + 1);
            break;
        }
        from = behind(from, length);
        if (length < wanted.size())
            break;
    }
    reader.behind_piece = from;
}

} // namespace

LineReader read_lines_from(const TextDocument& document, ByteOffset offset) {
    const std::int64_t line = line_of(point_at(document, offset));
    const ByteOffset start = line_start(document, line);
    // The end of a line belongs to its last piece.
    const ByteOffset last = std::max(line_end(document, line) - 1, start);
    const ByteOffset piece = start + (std::clamp(offset, start, last) - start) / k_piece * k_piece;
    return {.document = &document,
            .line = line,
            .line_start = start,
            .piece_start = piece,
            .behind_piece = point_at(document, piece)};
}

LineReader read_lines(const TextDocument& document, std::int64_t line) {
    line = std::clamp(line, std::int64_t{0}, line_count(document) - 1);
    const LineStart start = find_line(document, line);
    return {.document = &document,
            .line = line,
            .line_start = start.offset,
            .piece_start = start.offset,
            .behind_piece = start.point};
}

bool read_next(LineReader& reader, std::span<char, k_line_piece_bytes> buffer) {
    if (reader.has_begun) {
        const bool was_line_end = reader.is_line_end;
        if (was_line_end && reader.line + 1 >= line_count(*reader.document))
            return false;
        reader.piece_start += static_cast<ByteOffset>(reader.piece_bytes) + (was_line_end ? 1 : 0);
        if (was_line_end) {
            ++reader.line;
            reader.line_start = reader.piece_start;
        }
    }
    reader.has_begun = true;
    read_piece(reader, reader.behind_piece, buffer);
    return true;
}

bool read_previous(LineReader& reader, std::span<char, k_line_piece_bytes> buffer) {
    if (reader.has_begun) {
        if (reader.piece_start > reader.line_start) {
            reader.piece_start -= k_piece;
        } else {
            if (reader.line == 0)
                return false;
            const ByteOffset end = reader.line_start - 1;
            reader.line_start = line_start(*reader.document, --reader.line);
            const ByteOffset last = std::max(end - 1, reader.line_start);
            reader.piece_start = reader.line_start + (last - reader.line_start) / k_piece * k_piece;
        }
        reader.behind_piece = point_at(*reader.document, reader.piece_start);
    }
    reader.has_begun = true;
    read_piece(reader, reader.behind_piece, buffer);
    return true;
}

} // namespace pellux
