#include "core/text/text_words.h"

#include <algorithm>

namespace pellux {
namespace {

enum class Kind { line_end, blank, word, sign };

Kind kind_of(char c) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '\n')
        return Kind::line_end;
    if (byte <= ' ')
        return Kind::blank;
    const bool is_letter = (byte | 0x20) >= 'a' && (byte | 0x20) <= 'z';
    return is_letter || (byte >= '0' && byte <= '9') || c == '_' || byte >= 128 ? Kind::word
                                                                                : Kind::sign;
}

/// The end of the bytes of one kind from an offset on.
ByteOffset end_of_kind(const TextDocument& document, ByteOffset offset, Kind kind) {
    for (TextPoint point = point_at(document, offset);;) {
        const std::string_view piece = text_piece(point);
        const auto other =
            std::ranges::find_if(piece, [kind](char c) { return kind_of(c) != kind; });
        offset += other - piece.begin();
        if (other != piece.end() || piece.empty())
            return offset;
        point = behind(point, piece.size());
    }
}

ByteOffset start_of_kind(const TextDocument& document, ByteOffset offset, Kind kind) {
    TextPoint point = point_at(document, offset);
    for (;;) {
        while (point.offset > 0) {
            if (kind_of(byte_at(*point.block, point.offset - 1)) != kind)
                return offset;
            --point.offset;
            --offset;
        }
        if (point.block->previous == nullptr)
            return offset;
        point = {point.block->previous, block_length(*point.block->previous)};
    }
}

} // namespace

TextRange word_at(const TextDocument& document, ByteOffset offset) {
    const ByteOffset size = text_size(document);
    offset = std::clamp(offset, ByteOffset{0}, size);
    const bool is_at_end = offset == size || byte_at(document, offset) == '\n';
    if (is_at_end && (offset == 0 || byte_at(document, offset - 1) == '\n'))
        return {offset, offset};
    const ByteOffset inside = is_at_end ? offset - 1 : offset;
    const Kind kind = kind_of(byte_at(document, inside));
    return {start_of_kind(document, inside, kind), end_of_kind(document, inside, kind)};
}

ByteOffset next_word(const TextDocument& document, ByteOffset offset) {
    const ByteOffset size = text_size(document);
    if (offset < size)
        offset = end_of_kind(document, offset, kind_of(byte_at(document, offset)));
    while (offset < size) {
        const Kind kind = kind_of(byte_at(document, offset));
        if (kind == Kind::word || kind == Kind::sign)
            break;
        offset = end_of_kind(document, offset, kind);
    }
    return offset;
}

ByteOffset previous_word(const TextDocument& document, ByteOffset offset) {
    while (offset > 0) {
        const Kind kind = kind_of(byte_at(document, offset - 1));
        offset = start_of_kind(document, offset, kind);
        if (kind == Kind::word || kind == Kind::sign)
            break;
    }
    return offset;
}

} // namespace pellux
