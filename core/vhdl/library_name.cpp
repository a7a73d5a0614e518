#include "core/vhdl/library_name.h"

#include "core/os/ascii.h"

namespace pellux {

bool is_library_name(std::string_view name) {
    constexpr std::size_t k_longest = 200; // leaves room for what GHDL appends to a file's name
    if (name.empty() || name.size() > k_longest || !is_ascii_letter(name.front()) ||
        name.back() == '_')
        return false;
    for (std::size_t i = 0; i < name.size(); ++i) {
        const bool second_underline = name[i] == '_' && name[i - 1] == '_';
        if (second_underline ||
            !(is_ascii_letter(name[i]) || is_ascii_digit(name[i]) || name[i] == '_'))
            return false;
    }
    return true;
}

bool is_reserved_library(std::string_view lower_case_name) {
    return lower_case_name == "std" || lower_case_name == "ieee";
}

} // namespace pellux
