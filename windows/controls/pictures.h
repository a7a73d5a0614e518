#pragma once

#include "windows/toolkit/resource.h"

#include <span>

namespace pellux {

/// Numbers of the pictures that do not stand in a control line.
enum class Picture {
    vhdl_file = 351,
    pla_file = 352,
    missing_file = 353,
    top_file = 354,
    program = 361,
    error_mark = 371,
    warning_mark = 372,
    note_mark = 373,
};

/// The pictures of all toolbars and lists, by their numbers.
[[nodiscard]] std::span<const ImageResource> control_pictures();

} // namespace pellux
