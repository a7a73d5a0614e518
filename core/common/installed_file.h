#pragma once

#include "core/os/path.h"

#include <string_view>

namespace pellux {

/// Where a file of the installation's "bin" is expected: there, where `VELMORA_DIR` names one,
/// whether or not it exists; else in the current directory or along `PATH`, false when it is in
/// none.
[[nodiscard]] bool find_installed_file(std::string_view name, PathBuffer& path);

} // namespace pellux
