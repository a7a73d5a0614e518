#pragma once

#include "core/os/path.h"

#include <string_view>

namespace pellux {

/// The directory under which the installed libraries lie: "lib" in the one that `VELMORA_DIR`
/// names, else the "lib" found first on the way up from the `BRIX.EXE` of `PATH`. False when there
/// is none.
[[nodiscard]] bool find_install_library_root(PathBuffer& root);

/// Does the directory, all links followed, lie in the install library root, or is it the root? One
/// that is missing is judged by where it would be made.
[[nodiscard]] bool is_inside_install_root(std::string_view directory);

} // namespace pellux
