#pragma once

#include "core/library/rc_file.h"

#include <string_view>

namespace pellux {

/// What led to a library's directory. Only the directories of the first two may be written.
enum class LibraryRule {
    assigned,  ///< by a line of the rc file
    local,     ///< a file or directory of that name in the current directory
    installed, ///< in the installation that `VELMORA_DIR` names
    itself,    ///< nowhere yet: the name is the directory
};

struct LibraryDirectory {
    String path; ///< as it was found: relative to the current directory, or absolute
    LibraryRule rule = LibraryRule::itself;
};

/// Finds the directory of a library, the first rule that holds deciding. Library names are lower
/// case; a directory whose name differs in its case only is found too, after one of that very name.
[[nodiscard]] LibraryDirectory resolve_library(const RcFile& file, std::string_view name);

} // namespace pellux
