#pragma once

#include "core/common/containers.h"

#include <array>
#include <cstdint>
#include <string_view>

namespace pellux {

// The tokens of a VHDL text as GHDL 2.0 takes them, whatever the standard. Where the standards
// differ, or the text is no VHDL, rather too many words are seen than too few.

enum class VhdlToken : std::uint8_t {
    none,     ///< the text is at its end, or has not begun
    word,     ///< basic identifier or reserved word
    extended, ///< extended identifier with its backslashes, those within it doubled
    number,   ///< with its base, fraction and exponent
    string,   ///< bit strings with the specifiers B, O and X too, those with another are two tokens
    character, ///< character literal
    delimiter, ///< one character of a delimiter
};

enum class VhdlClass : std::uint8_t {
    other,
    blank,
    line_end, ///< what ends a comment: LF, CR, VT, FF
    letter,   ///< of Latin-1, and the underline
    digit,
    quote, ///< the quotation mark, and '%' that could once replace it
    apostrophe,
    backslash,
    dash,
    slash,
    backquote,
};

inline constexpr auto k_vhdl_classes = [] {
    std::array<VhdlClass, 256> classes{};
    for (unsigned c = 0; c < 256; ++c) {
        const unsigned upper = c & ~0x20U;
        if (c >= '0' && c <= '9')
            classes[c] = VhdlClass::digit;
        else if ((upper >= 'A' && upper <= 'Z') || c == '_' ||
                 (c >= 0xC0 && c != 0xD7 && c != 0xF7))
            classes[c] = VhdlClass::letter;
    }
    for (const unsigned c : {0x20U, 0x09U, 0xA0U})
        classes[c] = VhdlClass::blank;
    for (const unsigned c : {0x0AU, 0x0BU, 0x0CU, 0x0DU})
        classes[c] = VhdlClass::line_end;
    classes['"'] = classes['%'] = VhdlClass::quote;
    classes['\''] = VhdlClass::apostrophe;
    classes['\\'] = VhdlClass::backslash;
    classes['-'] = VhdlClass::dash;
    classes['/'] = VhdlClass::slash;
    classes['`'] = VhdlClass::backquote;
    return classes;
}();

inline VhdlClass vhdl_class(char c) {
    return k_vhdl_classes[static_cast<unsigned char>(c)];
}

inline bool is_word_part(char c) {
    const VhdlClass found = vhdl_class(c);
    return found == VhdlClass::letter || found == VhdlClass::digit;
}

/// A character of a word in lower case. 0x20 lies between the cases of all of Latin-1's letters but
/// the underline, sharp s and y with diaeresis.
inline char folded_letter(char c) {
    const auto byte = static_cast<unsigned char>(c);
    const bool upper = (byte & 0x60) == 0x40 && (byte & 0x1F) != 0x1F;
    return upper ? static_cast<char>(byte | 0x20) : c;
}

/// Reads the tokens of a text that outlives it.
struct VhdlLexer {
    VhdlToken kind = VhdlToken::none;
    const char* begin = nullptr; ///< of the token
    const char* at = nullptr;    ///< behind it
    const char* end = nullptr;   ///< of the text

    explicit VhdlLexer(std::string_view text)
        : begin(text.data()), at(begin), end(begin + text.size()), directive_end_(begin) {}

    /// Goes to the next token; `none` at the end.
    VhdlToken next();

    [[nodiscard]] std::string_view text() const {
        return {begin, static_cast<std::size_t>(at - begin)};
    }
    [[nodiscard]] std::string_view rest() const { return {at, static_cast<std::size_t>(end - at)}; }

    /// Is the token this basic identifier, given in lower case?
    [[nodiscard]] bool is_word(std::string_view lower_case) const;

private:
    /// A tool directive reaches up to here; there are no literals and no comments in its line.
    const char* directive_end_ = nullptr;

    VhdlToken found(VhdlToken new_kind, const char* from, const char* to) {
        begin = from;
        at = to;
        return kind = new_kind;
    }
    [[nodiscard]] bool starts_comment(const char* from, char second) const {
        return end - from > 1 && from[1] == second && from >= directive_end_;
    }
    VhdlToken found_other(const char* from);
    [[nodiscard]] const char* line_end(const char* from) const;
    [[nodiscard]] const char* block_comment_end(const char* from) const;
    [[nodiscard]] const char* number_end(const char* from) const;
    [[nodiscard]] const char* string_end(const char* from) const;
    [[nodiscard]] const char* extended_end(const char* from) const;
    [[nodiscard]] bool is_character_literal(const char* from) const;
};

// In the header because a scan spends its time here; what is rare is not.
inline VhdlToken VhdlLexer::next() {
    const char* from = at;
    while (from != end) {
        const VhdlClass first = vhdl_class(*from);
        if (first == VhdlClass::blank || first == VhdlClass::line_end) {
            ++from;
        } else if (first == VhdlClass::letter) {
            const char* to = from + 1;
            while (to != end && is_word_part(*to))
                ++to;
            const bool may_be_literal =
                to - from == 1 && to != end && vhdl_class(*to) == VhdlClass::quote;
            return may_be_literal ? found_other(from) : found(VhdlToken::word, from, to);
        } else if (first == VhdlClass::other) {
            return found(VhdlToken::delimiter, from, from + 1);
        } else if (first == VhdlClass::dash && starts_comment(from, '-')) {
            from = line_end(from + 2);
        } else if (first == VhdlClass::slash && starts_comment(from, '*')) {
            from = block_comment_end(from + 2);
        } else {
            return found_other(from);
        }
    }
    return found(VhdlToken::none, end, end);
}

inline bool VhdlLexer::is_word(std::string_view lower_case) const {
    if (kind != VhdlToken::word || text().size() != lower_case.size())
        return false;
    for (std::size_t i = 0; i < lower_case.size(); ++i) {
        if (folded_letter(begin[i]) != lower_case[i])
            return false;
    }
    return true;
}

/// As GHDL folds a basic identifier: ASCII and Latin-1 letters in lower case.
[[nodiscard]] String folded_identifier(std::string_view identifier);

/// May a string that follows the word at once be a bit string with it?
[[nodiscard]] bool is_base_specifier(std::string_view word);

/// May a character literal follow the word? All standards reserve it then, and behind any other
/// word an apostrophe may be an attribute's.
[[nodiscard]] bool may_precede_literal(std::string_view word);

/// Identifiers, numbers and delimiters of a VHDL text in their order; comments, string and
/// character literals are left out. Basic identifiers and reserved words come folded to lower case,
/// a delimiter is one character.
[[nodiscard]] Vector<String> vhdl_tokens(std::string_view source);

} // namespace pellux
