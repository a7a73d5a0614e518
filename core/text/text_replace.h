#pragma once

#include "core/text/text_editing.h"
#include "core/text/text_search.h"

namespace pellux {

// What find and replace do in one view.

/// The next match from the caret on in the pattern's direction, without going round. Forwards, a
/// selection that the caret stands at the start of counts without its first character, so that
/// finding again goes on; backwards, the selection counts as behind the caret.
[[nodiscard]] std::optional<TextRange> find_from_caret(const TextEditing& editing,
                                                       const SearchPattern& pattern);
/// Selects a match, with the caret at its start.
void select_match(TextEditing& editing, TextRange match);

/// Replaces the selection, when it is a match as a line of its own, and selects the new text; false
/// when it is none, or nothing can be changed.
bool replace_match(TextEditing& editing, const SearchPattern& pattern, std::string_view text);

/// Replaces the selection, when it is a match, and all matches from there on in the pattern's
/// direction, as one step. Each search goes on behind the new text (backwards, before it), which is
/// what stands beside the next word. The text that was put in last is selected. How many there
/// were.
std::int64_t replace_all(TextEditing& editing, const SearchPattern& pattern, std::string_view text);

} // namespace pellux
