#include "windows/app/start_options.h"

#include "core/os/ascii.h"

#include <string_view>

namespace pellux {

StartOptions parse_start_options(std::span<const char* const> words) {
    StartOptions options;
    constexpr std::size_t k_letter = 2;
    for (const std::string_view word : words) {
        const bool is_own =
            word.size() > k_letter && (word[0] == '-' || word[0] == '/') && word[1] == '%';
        const char letter = is_own ? ascii_upper(word[k_letter]) : '\0';
        if (letter == 'D')
            options.directory = word.substr(k_letter + 1);
        else if (letter == 'S')
            options.opens_projects = false;
        else if (!word.empty() && word[0] != '-' && !options.project)
            options.project = word;
    }
    return options;
}

} // namespace pellux
