#pragma once

#include "core/common/containers.h"

#include <cstddef>
#include <string_view>

namespace pellux {

/// The character, from 1, that stands at GHDL's column `column` of a source line, where a tab
/// reaches to the next multiple of 8. A column behind the line's end comes back as it is.
[[nodiscard]] int character_column(std::string_view line, int column);

/// The lines of the sources that messages name; each file is read when it is first asked for, and
/// is forgotten with the structure.
struct SourceLines {
    struct Source {
        String text;
        Vector<std::size_t> starts; ///< offset of each line; empty for an unreadable file
    };
    TextMap<Source> sources;
};

/// Line `number`, from 1, without its end; false when there is no such line to be had.
[[nodiscard]] bool source_line(SourceLines& lines, std::string_view file, int number,
                               std::string_view& line);

/// Offsets at which lines start. A line ends with LF, CR, or the two in either order, as it does
/// for GHDL.
[[nodiscard]] Vector<std::size_t> line_starts(std::string_view text);

} // namespace pellux
