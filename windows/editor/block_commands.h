#pragma once

#include "core/text/text_editing.h"

namespace pellux {

// What is done to the selected text as a whole: it is cut, changed and put back, as one step for
// undo. The new text is selected then, with the caret at its start. Without a selection, in a view
// that is read-only, and where the text would stay as it is, nothing happens.

inline constexpr std::string_view k_comment = "--";

/// Every letter; beyond ASCII those of Latin-1 that have the other case there.
void upper_case(TextEditing& editing);
void lower_case(TextEditing& editing);
/// "--" before the first character and behind each line end but the last character.
void comment(TextEditing& editing);
/// The first "--" of each line goes, where at most blanks and tabs stand before it.
void uncomment(TextEditing& editing);
/// A tab before the first character and behind each line end but the last character.
void indent_right(TextEditing& editing);
/// A tab goes from the start, and from behind each line end.
void indent_left(TextEditing& editing);

} // namespace pellux
