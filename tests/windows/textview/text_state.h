#pragma once

#include "core/text/text_editing.h"

#include <algorithm>
#include <string>

namespace pellux {

/// A view's text with '|' at the caret and '^' at the other end of the selection.
inline std::string text_state(const TextEditing& editing) {
    const String text = copy_text(editing.document, 0, text_size(editing.document));
    std::string shown(text.begin(), text.end());
    const auto caret = static_cast<std::size_t>(caret_offset(editing));
    const TextRange range = selection(editing);
    const auto other = static_cast<std::size_t>(range.start + range.end) - caret;
    shown.insert(std::max(caret, other), caret >= other ? "|" : "^");
    if (caret != other)
        shown.insert(std::min(caret, other), caret < other ? "|" : "^");
    return shown;
}

/// Makes a view what `text_state` says, as edits of its own.
inline void set_text_state(TextEditing& editing, std::string state) {
    const std::size_t anchor = state.find('^');
    std::size_t caret = state.find('|');
    std::erase_if(state, [](char c) { return c == '^' || c == '|'; });
    if (anchor < caret)
        --caret;
    select_range(editing, 0, text_size(editing.document));
    insert_text(editing, state);
    const std::size_t other = anchor == std::string::npos ? caret
                              : anchor > caret            ? anchor - 1
                                                          : anchor;
    select_range(editing, static_cast<ByteOffset>(other), static_cast<ByteOffset>(caret));
}

} // namespace pellux
