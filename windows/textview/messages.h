#pragma once

#include "core/diagnostics/message.h"

namespace pellux {

inline Message<> msg_no_search_text{"E2110", "No search text given."};
inline Message<> msg_no_replacement{"E2111", "No replacement text given."};
inline Message<const char*> msg_not_found{"E2112", "'%s' not found."};
inline Message<const char*> msg_not_selected{"E2113", "'%s' not selected."};
inline Message<const char*> msg_last_occurrence{"E2114", "Last occurrence of '%s'."};
inline Message<> msg_one_replacement{"E2115", "1 replacement made."};
inline Message<int> msg_replacements{"E2116", "'%d' replacements made."};
inline Message<> msg_replacement_lacks{
    "E2118", "The replacement text has characters that a Latin-1 text has not."};
inline Message<const char*> msg_encoding_lacks{"E2120", "A Latin-1 text has no '%s'."};
inline Message<> msg_clipboard_lacks{
    "E2121", "The text to paste has characters that a Latin-1 text has not."};
inline Message<> msg_selection_too_large{"E2122", "The selection is too large for the clipboard."};
inline Message<int, int> msg_match_of{"E2123", "%d of %d"};
inline Message<int, int> msg_match_of_more{"E2124", "%d of more than %d"};
inline Message<int> msg_matches{"E2125", "%d found"};
inline Message<int> msg_more_matches{"E2126", "more than %d found"};

} // namespace pellux
