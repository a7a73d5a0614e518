#include "tools/driver/vhdl_tokens.h"

#include "tools/driver/library_name.h"

namespace pellux {
namespace {

bool is_identifier_part(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
           static_cast<unsigned char>(c) >= 0xC0;
}

bool is_blank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// Offset behind the first `end` at or after `from`; the text's length without one.
std::size_t behind(std::string_view source, std::string_view end, std::size_t from) {
    const std::size_t found = source.find(end, from);
    return found == std::string_view::npos ? source.size() : found + end.size();
}

/// An apostrophe after a name or a bracket is an attribute's or a qualified expression's.
bool starts_character_literal(std::string_view rest, const Vector<String>& tokens) {
    if (rest.size() < 3 || rest[0] != '\'' || rest[2] != '\'')
        return false;
    if (tokens.empty())
        return true;
    const char last = tokens.back().back();
    return !is_identifier_part(last) && last != ')' && last != ']' && last != '\\';
}

} // namespace

Vector<String> vhdl_tokens(std::string_view source) {
    Vector<String> tokens;
    std::size_t i = 0;
    while (i < source.size()) {
        const std::string_view rest = source.substr(i);
        if (is_blank(rest[0])) {
            ++i;
        } else if (rest.starts_with("--")) {
            const std::size_t end = source.find_first_of("\r\n", i);
            i = end == std::string_view::npos ? source.size() : end;
        } else if (rest.starts_with("/*")) {
            i = behind(source, "*/", i + 2);
        } else if (rest[0] == '"') {
            i = behind(source, "\"", i + 1);
        } else if (starts_character_literal(rest, tokens)) {
            i += 3;
        } else if (rest[0] == '\\') {
            const std::size_t end = behind(source, "\\", i + 1);
            tokens.emplace_back(source.substr(i, end - i));
            i = end;
        } else if (is_identifier_part(rest[0])) {
            const std::size_t start = i;
            while (i < source.size() && is_identifier_part(source[i]))
                ++i;
            tokens.push_back(lower_case(source.substr(start, i - start)));
        } else {
            tokens.emplace_back(1, rest[0]);
            ++i;
        }
    }
    return tokens;
}

} // namespace pellux
