#pragma once

#include <string_view>

namespace pellux {

/// Tells a fault in a control's description through the toolkit's error print.
void report_control_error(std::string_view text);

/// What a control with `DEBUG=TRUE` tells of itself, on the same road.
void report_control_debug(std::string_view text);

} // namespace pellux
