#include "windows/app/box_diagnostics.h"

#include "core/diagnostics/catalogue.h"
#include "core/diagnostics/reporter.h"
#include "windows/app/messages.h"
#include "windows/toolkit/message_box.h"

#include <array>
#include <cstdio>

namespace pellux {
namespace {

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

void start_box_diagnostics() {
    Reporter& diagnostics = reporter();
    diagnostics.output = show_message;
    diagnostics.ending = show_end;
    start_diagnostics(nullptr);
    // It is loaded now, as long as there is memory.
    static_cast<void>(msg_exiting.text());
    xvt_errmsg_set_filter({is_of_small_weight, nullptr});
}

} // namespace pellux
