#pragma once

#include "core/text/text_block.h"

namespace pellux {

/// A place in a text's blocks. Between two blocks it is the start of the second one, so that each
/// place has one form.
struct TextPoint {
    TextBlock* block = nullptr;
    int offset = 0; ///< in the block's text

    bool operator==(const TextPoint&) const = default;
};

/// A position that follows its character whatever happens to the text around it: of text that is
/// inserted exactly there it stays in front, or goes behind when it advances. Of a deleted range it
/// keeps the place. Must be gone before its document.
struct TextMark : MarkLink {
    TextPoint point;
    bool advances = false;

    TextMark() = default;
    TextMark(TextPoint at, bool advances_on_insertion);
    ~TextMark();
    TextMark(const TextMark&) = delete;
    TextMark& operator=(const TextMark&) = delete;
};

void move_mark(TextMark& mark, TextPoint to);

// What the marks of a block go through with its text.

/// `count` bytes came in at `offset`.
void shift_marks_behind(TextBlock& block, int offset, int count);
/// `count` bytes behind `offset` are gone.
void pull_marks(TextBlock& block, int offset, int count);
/// The text from `first` on, as long as it is, now stands in `to`, where `first` is at `offset`.
void hand_over_marks(TextBlock& from, int first, int end, TextBlock& to, int offset);

} // namespace pellux
