#include "tools/driver/library_name.h"

namespace pellux {
namespace {

bool is_letter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

} // namespace

bool is_library_name(std::string_view name) {
    constexpr std::size_t k_longest = 200; // leaves room for what GHDL appends to a file's name
    if (name.empty() || name.size() > k_longest || !is_letter(name.front()) || name.back() == '_')
        return false;
    for (std::size_t i = 0; i < name.size(); ++i) {
        const bool second_underline = name[i] == '_' && name[i - 1] == '_';
        if (second_underline || !(is_letter(name[i]) || is_digit(name[i]) || name[i] == '_'))
            return false;
    }
    return true;
}

bool is_reserved_library(std::string_view lower_case_name) {
    return lower_case_name == "std" || lower_case_name == "ieee";
}

String lower_case(std::string_view text) {
    String lower(text);
    for (char& c : lower) {
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    }
    return lower;
}

} // namespace pellux
