#include "core/text/text_search.h"

#include <algorithm>

namespace pellux {
namespace {

/// Calls `visit` with each of the first `places` of a text where the bytes stand, as an offset;
/// false when it has seen enough.
template <typename Visit>
bool visit_bytes(std::string_view text, const SearchPattern& pattern, std::size_t places,
                 ByteOffset offset, const Visit& visit) {
    for (std::size_t at = 0; (at = find_bytes(text, pattern, at, places)) < places; ++at)
        if (!visit(offset + static_cast<ByteOffset>(at)))
            return false;
    return true;
}

/// What stands at a point, up to `size` bytes of it, added to a text.
void add_text(String& text, TextPoint at, std::size_t size) {
    while (size > 0) {
        const std::string_view piece = text_piece(at).substr(0, size);
        if (piece.empty())
            return;
        text += piece;
        size -= piece.size();
        at = behind(at, piece.size());
    }
}

/// The same for the places of a range, which begins at a point. Blocks are looked through where
/// they lie; only for the places whose bytes go on in a further piece are both put together.
template <typename Visit>
void visit_range(TextPoint at, const SearchPattern& pattern, TextRange range, const Visit& visit) {
    const std::size_t length = pattern.bytes.size();
    String seam;
    for (ByteOffset offset = range.start; offset < range.end;) {
        const std::string_view piece = text_piece(at);
        const auto places = static_cast<std::size_t>(
            std::min(static_cast<ByteOffset>(piece.size()), range.end - offset));
        const std::size_t whole =
            piece.size() < length ? 0 : std::min(places, piece.size() - length + 1);
        if (!visit_bytes(piece, pattern, whole, offset, visit))
            return;
        at = behind(at, piece.size());
        if (whole < places) {
            seam = piece.substr(whole);
            add_text(seam, at, places - whole + length - 1 - seam.size());
            if (!visit_bytes(seam, pattern, places - whole, offset + static_cast<ByteOffset>(whole),
                             visit))
                return;
        }
        offset += static_cast<ByteOffset>(piece.size());
    }
}

/// The part of a range where the pattern has room in the text; an empty one when it is empty.
TextRange places_in(const TextDocument& document, const SearchPattern& pattern, TextRange range) {
    const auto length = static_cast<ByteOffset>(pattern.bytes.size());
    if (length == 0)
        return {};
    return {std::max(range.start, ByteOffset{0}),
            std::min(range.end, text_size(document) - length + 1)};
}

bool is_allowed(const TextDocument& document, const SearchPattern& pattern, ByteOffset at) {
    const auto length = static_cast<ByteOffset>(pattern.bytes.size());
    return !pattern.whole_word ||
           (!word_ends_at(document, at) && !word_begins_at(document, at + length));
}

} // namespace

std::optional<TextRange> find_in(const TextDocument& document, const SearchPattern& pattern,
                                 TextRange range) {
    range = places_in(document, pattern, range);
    if (range.start >= range.end)
        return {};
    std::optional<TextRange> found;
    const auto keep = [&](ByteOffset at) {
        if (!is_allowed(document, pattern, at))
            return true;
        found = {at, at + static_cast<ByteOffset>(pattern.bytes.size())};
        return pattern.backwards;
    };
    if (!pattern.backwards) {
        visit_range(point_at(document, range.start), pattern, range, keep);
        return found;
    }
    // Each block is looked through forwards, and its last match counts.
    const TextPoint last = point_at(document, range.end - 1);
    const TextBlock* block = last.block;
    for (ByteOffset start = range.end - 1 - last.offset;;) {
        const TextRange part{std::max(start, range.start), range.end};
        visit_range({const_cast<TextBlock*>(block), static_cast<int>(part.start - start)}, pattern,
                    part, keep);
        if (found || start <= range.start)
            return found;
        range.end = start;
        block = block->previous;
        start -= block_length(*block);
    }
}

std::optional<TextRange> find_from(const TextDocument& document, const SearchPattern& pattern,
                                   ByteOffset offset) {
    const auto length = static_cast<ByteOffset>(pattern.bytes.size());
    return find_in(document, pattern,
                   pattern.backwards ? TextRange{0, offset - length + 1}
                                     : TextRange{offset, text_size(document)});
}

Vector<ByteOffset> find_all(const TextDocument& document, const SearchPattern& pattern,
                            TextRange range) {
    Vector<ByteOffset> found;
    range = places_in(document, pattern, range);
    if (range.start >= range.end)
        return found;
    visit_range(point_at(document, range.start), pattern, range, [&](ByteOffset at) {
        if (is_allowed(document, pattern, at))
            found.push_back(at);
        return true;
    });
    return found;
}

bool word_ends_at(const TextDocument& document, ByteOffset offset) {
    const ByteOffset size = std::min(offset, static_cast<ByteOffset>(k_character_bytes));
    return ends_in_word(view(copy_text(document, offset - size, size)), document.encoding);
}

bool word_begins_at(const TextDocument& document, ByteOffset offset) {
    return begins_in_word(view(copy_text(document, offset, k_character_bytes)), document.encoding);
}

} // namespace pellux
