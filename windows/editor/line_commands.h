#pragma once

#include "core/text/text_editing.h"

namespace pellux {

// What is done to whole lines: those that the selection touches (one that it only reaches the start
// of is none), or the caret's. Each is one step for undo; none changes a view that is read-only.

/// Ends the line; the new one begins with the blanks and tabs that the old one begins with, as far
/// as they stand before the caret.
void new_line_indented(TextEditing& editing);
/// Does the selection reach over a line end?
[[nodiscard]] bool selects_lines(const TextEditing& editing);
/// A tab more or less at the start of each line; the lines are selected then.
void indent_lines(TextEditing& editing);
void unindent_lines(TextEditing& editing);
/// Takes "--" from lines that are all comments or empty, else puts it before each.
void toggle_comment(TextEditing& editing);
/// Puts the lines once more below.
void double_lines(TextEditing& editing);
/// The lines change places with the one above or below.
void move_lines_up(TextEditing& editing);
void move_lines_down(TextEditing& editing);

/// The word, or the blanks and the word, before or behind the caret; a selection instead.
void delete_word_left(TextEditing& editing);
void delete_word_right(TextEditing& editing);

} // namespace pellux
