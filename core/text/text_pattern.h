#pragma once

#include "core/common/containers.h"
#include "core/common/text_encoding.h"

#include <cstddef>
#include <string_view>

namespace pellux {

/// What a user looks for. Ignoring case compares ASCII's letters and those of Latin-1. A whole word
/// has no letter or digit on either side; the underscore is neither.
struct SearchRules {
    std::string_view pattern; ///< in the encoding of the text
    bool ignores_case = false;
    bool backwards = false;
    bool whole_word = false;
};

/// The same made ready for comparing. The two forms of a letter differ in one bit, in both
/// encodings, so that a case to be ignored is a bit that does not count.
struct SearchPattern {
    String bytes{};          ///< with the bits set that do not count
    String ignored{};        ///< of each byte the bits that do not count
    std::size_t probes[2]{}; ///< where the two bytes stand that texts are likely to have least
    TextEncoding encoding = TextEncoding::utf_8;
    bool ignores_case = false;
    bool backwards = false;
    bool whole_word = false;

    bool operator==(const SearchPattern&) const = default;
};

/// Ready for texts of that encoding. An empty pattern, and one with a line end, match nowhere.
[[nodiscard]] SearchPattern compile_search(const SearchRules& rules, TextEncoding encoding);

/// Do the bytes of the pattern stand at the front of a text?
[[nodiscard]] bool begins_with(std::string_view text, const SearchPattern& pattern);
/// Is the text a match, and nothing else?
[[nodiscard]] bool is_match(std::string_view text, const SearchPattern& pattern);

/// The first place at `from` or behind it, and before `end`, where the bytes of the pattern stand;
/// `end` when there is none. All of the pattern must fit behind each place before `end`.
[[nodiscard]] std::size_t find_bytes(std::string_view text, const SearchPattern& pattern,
                                     std::size_t from, std::size_t end);

/// Where the first match begins in a text that stands alone, at `from` or behind it. npos: none.
[[nodiscard]] std::size_t find_match(std::string_view text, const SearchPattern& pattern,
                                     std::size_t from);

/// The most bytes that a character has.
inline constexpr std::size_t k_character_bytes = 4;

/// Is the first, or the last, character of a text a letter or a digit? Beyond Latin-1 the letters
/// are all characters up to U+1FFF, where the alphabets stand. Looks at one character's bytes.
[[nodiscard]] bool begins_in_word(std::string_view text, TextEncoding encoding);
[[nodiscard]] bool ends_in_word(std::string_view text, TextEncoding encoding);

} // namespace pellux
