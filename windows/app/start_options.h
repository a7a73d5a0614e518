#pragma once

#include "core/common/containers.h"

#include <optional>
#include <span>

namespace pellux {

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
