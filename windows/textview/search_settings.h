#pragma once

#include "core/common/containers.h"
#include "core/text/text_pattern.h"

#include <optional>
#include <string_view>

namespace pellux {

/// So many search texts the user's settings keep.
inline constexpr std::size_t k_recent_searches_max = 20;
/// The most bytes that a field for a search text takes.
inline constexpr int k_search_text_max = 512;

/// What is searched for, in all texts and in the files of a project. The texts are UTF-8 as far as
/// they came from such a text; bytes that are none stay what they are.
struct SearchSettings {
    String text{};
    String replacement{};
    bool ignores_case = false;
    bool backwards = false;
    bool whole_word = false;
    Vector<String> recent{}; ///< search texts, the last one first
};
/// One for the process. The recent ones are read when it is first asked for.
[[nodiscard]] SearchSettings& search_settings();
/// As at the program's start.
void read_search_settings();

/// Takes note of a text that was searched for, and keeps it for the user. One that has a NUL, or is
/// too long for a field, is not kept.
void keep_search_text(std::string_view text);

/// A text of the settings in the encoding of another text; nothing when that can't hold it.
[[nodiscard]] std::optional<String> text_in(std::string_view text, TextEncoding encoding);
/// What to look for in a text of that encoding, backwards as the settings say. It matches nowhere
/// when the encoding can't hold the search text.
[[nodiscard]] SearchPattern search_pattern(const SearchSettings& settings, TextEncoding encoding);

} // namespace pellux
