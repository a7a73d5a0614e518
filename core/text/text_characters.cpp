#include "core/text/text_characters.h"

#include "core/common/utf8.h"

#include <algorithm>

namespace pellux {
namespace {

bool is_utf8(const TextDocument& document) {
    return document.encoding == TextEncoding::utf_8;
}

bool is_continuation_at(const TextDocument& document, ByteOffset offset) {
    return is_utf8(document) && offset < text_size(document) &&
           is_continuation(byte_at(document, offset));
}

/// Does a character begin at an offset, or the text end?
bool is_start(const TextDocument& document, ByteOffset offset) {
    return offset <= 0 || !is_continuation_at(document, offset) ||
           byte_at(document, offset - 1) == '\n';
}

/// The characters that begin before an offset, each line's first byte counting as the start of one
/// only when it is no continuation.
std::int64_t starts_before(const TextDocument& document, ByteOffset offset) {
    const TextCounts counts = counts_before(document, offset);
    return counts.bytes - counts.continuations;
}

/// Where the byte stands that is no continuation and of that number; the end of the text when there
/// are not that many.
ByteOffset start_of_number(const TextDocument& document, std::int64_t number) {
    const TextCounts& total = document.index.total;
    if (number >= total.bytes - total.continuations)
        return total.bytes;
    const IndexPlace found = find_character(document.index, number);
    std::int64_t left = number - (found.before.bytes - found.before.continuations);
    int offset = 0;
    while (is_continuation(byte_at(*found.block, offset)) || left-- > 0)
        ++offset;
    return found.before.bytes + offset;
}

} // namespace

TextPlace place_at(const TextDocument& document, ByteOffset offset) {
    offset = std::clamp(offset, ByteOffset{0}, text_size(document));
    const TextCounts counts = counts_before(document, offset);
    const ByteOffset start = line_start(document, counts.line_ends);
    if (!is_utf8(document))
        return {counts.line_ends, offset - start};
    const bool begins_within = offset > start && is_continuation_at(document, start);
    return {counts.line_ends, counts.bytes - counts.continuations - starts_before(document, start) +
                                  (begins_within ? 1 : 0)};
}

ByteOffset offset_at(const TextDocument& document, const TextPlace& place) {
    if (place.line >= line_count(document))
        return text_size(document);
    const ByteOffset start = line_start(document, place.line);
    const ByteOffset end = line_end(document, place.line);
    if (place.column <= 0)
        return start;
    if (!is_utf8(document))
        return place.column < end - start ? start + place.column : end;
    // Its number among all that begin in the text.
    const std::int64_t number = starts_before(document, start) + place.column -
                                (start < end && is_continuation_at(document, start) ? 1 : 0);
    return place.column < end - start ? std::min(end, start_of_number(document, number)) : end;
}

ByteOffset next_character(const TextDocument& document, ByteOffset offset) {
    if (offset + 1 >= text_size(document))
        return text_size(document);
    if (is_start(document, offset + 1))
        return offset + 1;
    return start_of_number(document, starts_before(document, offset + 1));
}

ByteOffset previous_character(const TextDocument& document, ByteOffset offset) {
    if (offset <= 0)
        return 0;
    return character_start(document, offset - 1);
}

ByteOffset move_by_characters(const TextDocument& document, ByteOffset offset, std::int64_t count) {
    if (!is_utf8(document))
        return std::clamp(offset + count, ByteOffset{0}, text_size(document));
    for (; count > 0 && offset < text_size(document); --count)
        offset = next_character(document, offset);
    for (; count < 0 && offset > 0; ++count)
        offset = previous_character(document, offset);
    return offset;
}

ByteOffset character_start(const TextDocument& document, ByteOffset offset) {
    if (is_start(document, offset))
        return offset;
    const TextCounts before = counts_before(document, offset);
    const std::int64_t number = before.bytes - before.continuations - 1;
    const ByteOffset line = line_start(document, before.line_ends);
    return number < 0 ? line : std::max(line, start_of_number(document, number));
}

} // namespace pellux
