#pragma once

#include <cstdint>
#include <optional>

namespace pellux {

class TextWindow;

// Find and replace in the text of a window, by the search settings. What there is to say is said by
// notes, after which the window may be gone; its text and caret are then as they were.

/// Selects the next match in the settings' direction; false when there is none before the end of
/// the text, where a search ends, and without a search text. `from_top`: the caret first goes to
/// the start of the text.
bool find(TextWindow& window, bool from_top);
/// The same in the other direction, from the caret on.
bool find_other_way(TextWindow& window);
/// Replaces the selection when it is a match, and selects the new text. `quiet`: says nothing when
/// it is none.
bool replace_selection(TextWindow& window, bool quiet);
/// The same, and on to the next match.
void replace_and_find(TextWindow& window);
/// Replaces all matches from the caret on in the settings' direction as one step. How many there
/// were; nothing when a text was lacking.
std::optional<std::int64_t> replace_all(TextWindow& window);

} // namespace pellux
