#include "windows/app/startup.h"

#include "core/diagnostics/catalogue.h"
#include "core/diagnostics/reporter.h"
#include "core/os/ascii.h"
#include "core/os/environment.h"
#include "windows/app/messages.h"
#include "windows/toolkit/message_box.h"

#include <array>
#include <cstdio>
#include <string_view>

namespace pellux {
namespace {

/// Puts `place` in front of what the variable holds.
void put_in_front(const char* name, String place) {
    const char* old = environment_variable(name);
    if (old != nullptr && *old != '\0') {
        place += ';';
        place += old;
    }
    set_environment_variable(name, place.c_str());
}

constexpr int k_small_weight_max = 2;
constexpr std::uint32_t k_never_shown = 0x01830003;

void show_message(void*, std::string_view text) {
    xvt_dm_post_error("%s", String(text).c_str());
}

/// The memory may be exhausted: all that is needed is here already.
void show_end(void*, int status) {
    std::array<char, 200> text{};
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    std::snprintf(text.data(), text.size(), msg_exiting.text(), status);
#pragma GCC diagnostic pop
    xvt_dm_post_fatal_exit(text.data());
}

bool is_of_small_weight(void*, const ToolkitError& error) {
    return error.severity <= k_small_weight_max || error.id == k_never_shown;
}

} // namespace

void install_search_paths() {
    const char* install = installation_directory();
    String bin(install == nullptr ? "." : install);
    bin += "/bin";
    put_in_front("XVTPATH", bin);
    put_in_front("UIDPATH", bin + "/%N.uid");
    set_environment_variable("HELP", bin.c_str());
}

void start_box_diagnostics() {
    Reporter& diagnostics = reporter();
    diagnostics.output = show_message;
    diagnostics.ending = show_end;
    start_diagnostics(nullptr);
    // It is loaded now, as long as there is memory.
    static_cast<void>(msg_exiting.text());
    xvt_errmsg_set_filter({is_of_small_weight, nullptr});
}

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
