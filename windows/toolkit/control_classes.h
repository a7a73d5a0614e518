#pragma once

#include "windows/toolkit/custom_control.h"

namespace pellux {

/// The handler of a class of custom controls, or null.
[[nodiscard]] const EventHandler* find_control_class(std::string_view class_name);

} // namespace pellux
