#pragma once

namespace pellux {

class TextWindow;

// The dialogs Find and Replace, of which one stands at a time. They belong to the text window that
// had the focus last, whose matches they show; without any they close.

/// Opens the dialog, or brings it forward, with the window's selected text to be searched for;
/// null: for none, so that it only takes settings.
void open_find_dialog(TextWindow* window);
void open_replace_dialog(TextWindow* window);

} // namespace pellux
