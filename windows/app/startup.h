#pragma once

#include "core/common/containers.h"

#include <optional>
#include <span>

namespace pellux {

// What a program with windows does before there is one.

/// Sets `XVTPATH`, `UIDPATH` and `HELP` for what this program starts, from `VELMORA_DIR`.
void install_search_paths();

/// Starts the diagnostics: each message stands in an error box, and the end that comes of a fatal
/// one is told in a last box. Toolkit messages of small weight are not shown. The toolkit is up
/// before.
void start_box_diagnostics();

/// What the command line asks for.
struct StartOptions {
    bool opens_projects = true;      ///< at once; else the start-up picture comes first
    std::optional<String> directory; ///< to start in, maybe empty
    std::optional<String> project;   ///< file to open
};

/// Reads the words behind the program's name: `-%S`, `-%D` with a directory, and the first word
/// that is no switch as the project. The letters may be of either case. A word that begins with '/'
/// is a path unless it is one of the two; all other switches are passed over.
[[nodiscard]] StartOptions parse_start_options(std::span<const char* const> words);

} // namespace pellux
