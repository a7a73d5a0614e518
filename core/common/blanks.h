#pragma once

#include <string_view>

namespace pellux {

/// `text` without the blanks, tabs, CRs and LFs at its start and end; a part of it even when it is
/// empty.
[[nodiscard]] std::string_view trim_blanks(std::string_view text);

/// Takes the next word off `rest`, where blanks and tabs part the words; false when there is none.
[[nodiscard]] bool next_word(std::string_view& rest, std::string_view& word);

} // namespace pellux
