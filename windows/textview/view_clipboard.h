#pragma once

#include "windows/textview/text_view.h"

namespace pellux {

// Text between views, and to and from other programs. Between views of one encoding bytes stay what
// they are; else characters are converted.

/// Puts the selection on the clipboard. False without one, and when it is too large.
bool copy_to_clipboard(const TextView& view);
/// The same, and deletes it.
bool cut_to_clipboard(TextView& view);

enum class PasteResult {
    done,
    nothing,           ///< there is no text to paste, or the view is read-only
    lacks_a_character, ///< the view's encoding does
};
/// Inserts what the clipboard holds, in place of the selection.
PasteResult paste_from_clipboard(TextView& view);
/// Inserts at an offset what is selected here or in another window or program.
PasteResult paste_selection(TextView& view, ByteOffset at);
[[nodiscard]] bool can_paste();

/// Offers what is selected to others, as long as something is.
void offer_selection(const TextView& view);
/// Answers who asked for it.
void give_selection(const TextView& view, const SelectionEvent& wanted);

} // namespace pellux
