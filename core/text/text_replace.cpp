#include "core/text/text_replace.h"

#include <algorithm>

namespace pellux {
namespace {

bool selects_match(const TextEditing& editing, const SearchPattern& pattern) {
    const TextRange range = selection(editing);
    return range.end - range.start == static_cast<ByteOffset>(pattern.bytes.size()) &&
           is_match(view(selected_text(editing)), pattern);
}

/// Where a search for the next match begins.
ByteOffset search_start(const TextEditing& editing, const SearchPattern& pattern) {
    const TextRange range = selection(editing);
    const ByteOffset caret = caret_offset(editing);
    if (pattern.backwards || range.start == range.end)
        return range.start;
    return caret == range.start ? next_character(editing.document, caret) : caret;
}

/// Picks what is replaced of the places where the bytes stand, one after the other in the direction
/// of the search.
struct Choice {
    const TextDocument& document;
    const SearchPattern& pattern;
    std::string_view text; ///< to be put there
    Vector<ByteOffset> places{};
    bool has_word_beside = false; ///< the side of the last place that the next one sees

    [[nodiscard]] ByteOffset length() const {
        return static_cast<ByteOffset>(pattern.bytes.size());
    }
    [[nodiscard]] bool touches_last(ByteOffset at) const {
        return !places.empty() && (pattern.backwards ? at + length() == places.back()
                                                     : at == places.back() + length());
    }
    [[nodiscard]] bool overlaps_last(ByteOffset at) const {
        return !places.empty() && at + length() > places.back() && at < places.back() + length();
    }
    void take(ByteOffset at);
    void take_if_word(ByteOffset at);
};

void Choice::take(ByteOffset at) {
    if (!text.empty())
        has_word_beside = pattern.backwards ? begins_in_word(text, pattern.encoding)
                                            : ends_in_word(text, pattern.encoding);
    else if (!touches_last(at))
        has_word_beside = pattern.backwards ? word_begins_at(document, at + length())
                                            : word_ends_at(document, at);
    places.push_back(at);
}

void Choice::take_if_word(ByteOffset at) {
    if (overlaps_last(at))
        return;
    if (pattern.whole_word) {
        const bool is_beside = touches_last(at);
        const bool has_before =
            is_beside && !pattern.backwards ? has_word_beside : word_ends_at(document, at);
        const bool has_behind = is_beside && pattern.backwards
                                    ? has_word_beside
                                    : word_begins_at(document, at + length());
        if (has_before || has_behind)
            return;
    }
    take(at);
}

} // namespace

std::optional<TextRange> find_from_caret(const TextEditing& editing, const SearchPattern& pattern) {
    return find_from(editing.document, pattern, search_start(editing, pattern));
}

void select_match(TextEditing& editing, TextRange match) {
    select_range(editing, match.end, match.start);
}

bool replace_match(TextEditing& editing, const SearchPattern& pattern, std::string_view text) {
    if (!selects_match(editing, pattern))
        return false;
    const UndoGroup group(editing);
    String replaced;
    if (!cut_selection(editing, replaced))
        return false;
    if (insert_text(editing, text))
        select_mode(editing, SelectMode::inserted);
    return true;
}

std::int64_t replace_all(TextEditing& editing, const SearchPattern& pattern,
                         std::string_view text) {
    if (editing.is_read_only)
        return 0;
    TextDocument& document = editing.document;
    Choice choice{.document = document, .pattern = pattern, .text = text};
    const ByteOffset length = choice.length();
    ByteOffset start = search_start(editing, pattern);
    if (selects_match(editing, pattern)) {
        choice.take(selection(editing).start);
        start = selection(editing).start + (pattern.backwards ? 0 : length);
    }
    SearchPattern anywhere = pattern;
    anywhere.whole_word = false;
    Vector<ByteOffset> found = find_all(document, anywhere,
                                        pattern.backwards ? TextRange{0, start - length + 1}
                                                          : TextRange{start, text_size(document)});
    if (pattern.backwards)
        std::ranges::reverse(found);
    for (const ByteOffset at : found)
        choice.take_if_word(at);
    if (choice.places.empty())
        return 0;
    const auto count = static_cast<std::int64_t>(choice.places.size());
    if (pattern.backwards)
        std::ranges::reverse(choice.places);
    String texts = pattern.bytes;
    if (pattern.ignores_case) {
        texts.clear();
        for (const ByteOffset at : choice.places)
            texts += copy_text(document, at, length);
    }
    const TextOperation operation(editing);
    const ByteOffset first = choice.places.front();
    if (!replace_at(editing, std::move(choice.places), length, std::move(texts), text))
        return 0;
    if (pattern.backwards)
        go_to_offset(editing, first + editing.inserted_bytes);
    if (!text.empty())
        select_mode(editing, SelectMode::inserted);
    return count;
}

} // namespace pellux
