#include "core/vhdl/vhdl_lexer.h"

#include <algorithm>
#include <cstring>

namespace pellux {
namespace {

constexpr std::array<std::string_view, 32> k_words_before_literals{
    "abs",      "alias", "and",       "assert", "case", "downto", "else",   "elsif",
    "guarded",  "if",    "in",        "is",     "mod",  "nand",   "nor",    "not",
    "of",       "on",    "or",        "range",  "rem",  "report", "return", "select",
    "severity", "to",    "transport", "until",  "when", "while",  "with",   "xor"};

constexpr std::array<std::string_view, 10> k_base_specifiers{"b",  "o",  "x",  "d",  "ub",
                                                             "uo", "ux", "sb", "so", "sx"};

bool is_of_all_standards(char base) {
    return base == 'b' || base == 'o' || base == 'x';
}

bool is_decimal(char c) {
    return vhdl_class(c) == VhdlClass::digit || c == '_';
}

bool is_extended_digit(char c) {
    const char lower = folded_letter(c);
    return is_decimal(c) || c == '.' || (lower >= 'a' && lower <= 'f');
}

template <std::size_t n>
bool is_one_of(const std::array<std::string_view, n>& words, std::string_view word) {
    const auto same = [&](std::string_view known) {
        return std::equal(known.begin(), known.end(), word.begin(), word.end(),
                          [](char a, char b) { return a == folded_letter(b); });
    };
    return std::any_of(words.begin(), words.end(), same);
}

} // namespace

String folded_identifier(std::string_view identifier) {
    String lower(identifier);
    std::transform(lower.begin(), lower.end(), lower.begin(), folded_letter);
    return lower;
}

bool is_base_specifier(std::string_view word) {
    return is_one_of(k_base_specifiers, word);
}

bool may_precede_literal(std::string_view word) {
    return is_one_of(k_words_before_literals, word);
}

const char* VhdlLexer::line_end(const char* from) const {
    return std::find_if(from, end, [](char c) { return vhdl_class(c) == VhdlClass::line_end; });
}

const char* VhdlLexer::block_comment_end(const char* from) const {
    const std::string_view comment(from, static_cast<std::size_t>(end - from));
    const std::size_t found_at = comment.find("*/");
    return found_at == std::string_view::npos ? end : from + found_at + 2;
}

/// `from` is at a digit.
const char* VhdlLexer::number_end(const char* from) const {
    const char* to = std::find_if_not(from, end, is_decimal);
    if (to != end && (*to == '#' || *to == ':')) {
        const char* close = std::find_if_not(to + 1, end, is_extended_digit);
        if (close != end && *close == *to && close > to + 1)
            to = close + 1;
    } else if (end - to > 1 && *to == '.' && is_decimal(to[1])) {
        to = std::find_if_not(to + 1, end, is_decimal);
    }
    if (to == end || folded_letter(*to) != 'e')
        return to;
    const char* exponent = to + 1;
    if (exponent != end && (*exponent == '+' || *exponent == '-'))
        ++exponent;
    const bool has_digits = exponent != end && vhdl_class(*exponent) == VhdlClass::digit;
    return has_digits ? std::find_if_not(exponent, end, is_decimal) : to;
}

/// `from` is at the first quote. Without a second one a string ends with its line; a '%' is none
/// then, and null the answer.
const char* VhdlLexer::string_end(const char* from) const {
    const char quote = *from;
    const char* to = from + 1;
    while (to != end && vhdl_class(*to) != VhdlClass::line_end) {
        if (*to++ != quote)
            continue;
        if (to == end || *to != quote)
            return to;
        ++to;
    }
    return quote == '"' ? to : nullptr;
}

/// Null when the line ends first.
const char* VhdlLexer::extended_end(const char* from) const {
    const char* to = from + 1;
    while (to != end && vhdl_class(*to) != VhdlClass::line_end) {
        if (*to++ != '\\')
            continue;
        if (to == end || *to != '\\')
            return to;
        ++to;
    }
    return nullptr;
}

/// GHDL sees an attribute's apostrophe behind a name or a character literal only, not behind a
/// bracket.
bool VhdlLexer::is_character_literal(const char* from) const {
    if (end - from < 3 || from[2] != '\'' || vhdl_class(from[1]) == VhdlClass::line_end)
        return false;
    switch (kind) {
    case VhdlToken::none:
    case VhdlToken::number:
    case VhdlToken::string:
    case VhdlToken::delimiter:
        return true;
    case VhdlToken::extended:
    case VhdlToken::character:
        return false;
    case VhdlToken::word:
        break;
    }
    const bool may_follow_name =
        from[1] == '(' || from[1] == '\\' || vhdl_class(from[1]) == VhdlClass::letter;
    return !may_follow_name || may_precede_literal(text());
}

/// The token at `from`: a number, a literal, an extended identifier, a word of one letter before a
/// quote, or what only looked like one of them.
VhdlToken VhdlLexer::found_other(const char* from) {
    const VhdlClass first = vhdl_class(*from);
    if (first == VhdlClass::digit)
        return found(VhdlToken::number, from, number_end(from));
    const bool is_word = first == VhdlClass::letter;
    const VhdlToken plain = is_word ? VhdlToken::word : VhdlToken::delimiter;
    if (from < directive_end_)
        return found(plain, from, from + 1);
    VhdlToken literal = VhdlToken::string;
    const char* to = nullptr;
    if (first == VhdlClass::quote) {
        to = string_end(from);
    } else if (is_word && is_of_all_standards(folded_letter(*from))) {
        to = string_end(from + 1);
    } else if (first == VhdlClass::backslash) {
        literal = VhdlToken::extended;
        to = extended_end(from);
    } else if (first == VhdlClass::apostrophe) {
        literal = VhdlToken::character;
        to = is_character_literal(from) ? from + 3 : nullptr;
    } else if (first == VhdlClass::backquote) {
        directive_end_ = line_end(from);
    }
    return to == nullptr ? found(plain, from, from + 1) : found(literal, from, to);
}

Vector<String> vhdl_tokens(std::string_view source) {
    Vector<String> tokens;
    VhdlLexer lexer(source);
    for (;;) {
        switch (lexer.next()) {
        case VhdlToken::none:
            return tokens;
        case VhdlToken::word:
            tokens.push_back(folded_identifier(lexer.text()));
            break;
        case VhdlToken::extended:
        case VhdlToken::number:
        case VhdlToken::delimiter:
            tokens.emplace_back(lexer.text());
            break;
        case VhdlToken::string:
        case VhdlToken::character:
            break;
        }
    }
}

} // namespace pellux
