#pragma once

#include "core/common/containers.h"
#include "core/os/files.h"

#include <string_view>

namespace pellux {

/// The spellings of the source files: messages use the argument vector's, whatever GHDL prints.
struct SourceNames {
    struct Name {
        String given; ///< in the argument vector
        String ghdl;  ///< in GHDL's call
        bool looked_up = false;
        FileStat stat; ///< kind `none` for a file that cannot be had
    };
    Vector<Name> names;
};

/// The argument vector's spelling of the file that GHDL calls `path`, be it another path to the
/// same file; else `path`. The view lasts as long as `names` and `path`.
[[nodiscard]] std::string_view shown_name(SourceNames& names, std::string_view path);

} // namespace pellux
