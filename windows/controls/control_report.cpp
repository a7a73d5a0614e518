#include "windows/controls/control_report.h"

#include "windows/toolkit/message_box.h"

namespace pellux {
namespace {

// Both are worse than what the program's filter keeps quiet.
constexpr int k_severity = 3;
constexpr std::uint32_t k_error_id = 0x0C000001;
constexpr std::uint32_t k_debug_id = 0x0C000002;

} // namespace

void report_control_error(std::string_view text) {
    xvt_errmsg_signal({.severity = k_severity, .id = k_error_id, .text = text});
}

void report_control_debug(std::string_view text) {
    xvt_errmsg_signal({.severity = k_severity, .id = k_debug_id, .text = text});
}

} // namespace pellux
