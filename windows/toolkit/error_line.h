#pragma once

#include "core/os/process.h"

#include <span>
#include <string_view>

namespace pellux {

/// Writes a line to standard error; takes no memory.
inline void write_error_line(std::string_view text) {
    for (const std::string_view part : {text, std::string_view("\n")})
        static_cast<void>(write_handle(standard_errors(), std::as_bytes(std::span(part))));
}

} // namespace pellux
