#pragma once

#include "core/common/containers.h"
#include "core/os/files.h"

#include <cstddef>
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

/// The sources that messages name; each file is read when it is first asked for, and is forgotten
/// with the structure.
struct SourceLines {
    struct Source {
        String text;
        Vector<std::size_t> starts; ///< offset of each line; empty for an unreadable file
        bool is_utf8 = false;       ///< all of it; else a byte is a character
    };
    TextMap<Source> sources;
};

/// The character, from 1, that stands at GHDL's column of line `line` of a file, which counts
/// bytes, and a tab up to the next multiple of 8. A column behind the line's end, or of a line that
/// is not to be had, comes back as it is.
[[nodiscard]] int character_column(SourceLines& lines, std::string_view file, int line, int column);

} // namespace pellux
