#pragma once

#include "core/os/system_error.h"

#include <string_view>

namespace pellux {

/// Replaces a file that can be made anew from others: as a whole, so that no reader meets half of
/// it, but without waiting for the disk. Its reader must find out what a loss of power left.
[[nodiscard]] SystemError write_derived_file(std::string_view path, std::string_view text);

/// Can files be written beside `path`? Leaves nothing there.
[[nodiscard]] SystemError try_writing(std::string_view path);

} // namespace pellux
