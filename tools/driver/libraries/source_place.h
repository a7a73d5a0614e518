#pragma once

#include "core/common/containers.h"

#include <string_view>

namespace pellux {

// Where the sources of a library lie: GHDL's library files hold absolute directories, ours hold
// paths that survive a move of the tree.

/// "work/alu.vif" for any source "alu.vhd" of the library in "work".
[[nodiscard]] String vif_name(std::string_view library_directory, std::string_view file);

/// The path that the library keeps of its source `file`, relative to its directory; empty when it
/// has none that can be used.
[[nodiscard]] String read_vif(std::string_view library_directory, std::string_view file);

/// The absolute paths, ascending, of the VHDL files in the library's absolute directory and of the
/// other sources that it keeps a path to, as far as they are there.
[[nodiscard]] Vector<String> kept_sources(std::string_view library_directory);

} // namespace pellux
