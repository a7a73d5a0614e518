#pragma once

#include "core/common/containers.h"

namespace pellux {

class TextWindow;

// The dialogs Find and Replace, of which one stands at a time. They belong to the text window that
// had the focus last, whose matches they show; without any they close.

/// Opens the dialog, or brings it forward, with the window's selected text to be searched for;
/// null: for none, so that it only takes settings.
void open_find_dialog(TextWindow* window);
void open_replace_dialog(TextWindow* window);

/// The selected text of a window, as far as it serves as a search text; empty without a selection.
[[nodiscard]] String text_to_find(TextWindow& window);

} // namespace pellux
