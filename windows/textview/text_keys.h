#pragma once

#include "windows/textview/text_view.h"

namespace pellux {

/// Does what a key stands for in every text: moves, which select while Shift is held, and what
/// deletes. False for one that stands for nothing there.
bool take_text_key(TextView& view, const CharacterEvent& key);

/// The same for a key that scrolls by a line, Ctrl with an arrow, and leaves the caret where it is,
/// in sight or not.
bool take_scroll_key(TextView& view, const CharacterEvent& key);

} // namespace pellux
