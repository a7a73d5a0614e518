#pragma once

#include "core/diagnostics/message.h"

namespace pellux {

inline Message<const char*> msg_encoding_lacks{"E2120", "A Latin-1 text has no '%s'."};
inline Message<> msg_clipboard_lacks{
    "E2121", "The text to paste has characters that a Latin-1 text has not."};
inline Message<> msg_selection_too_large{"E2122", "The selection is too large for the clipboard."};

} // namespace pellux
