#pragma once

#include "windows/workspace/search_window.h"

#include <string_view>

namespace pellux {

/// Makes the dialog known.
void register_search_question();
/// Asks what to look for, beginning with what is selected in the editor that was used last, else
/// with what was looked for last. False when the user cancels.
[[nodiscard]] bool ask_for_search(std::string_view title, SearchWords& words);

} // namespace pellux
