#pragma once

#include "windows/textview/text_view.h"

namespace pellux {

/// Does what a key stands for in every text: moves, which select while Shift is held, and what
/// deletes. False for one that stands for nothing there.
bool take_text_key(TextView& view, const CharacterEvent& key);

} // namespace pellux
