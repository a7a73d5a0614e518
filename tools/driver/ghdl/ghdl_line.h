#pragma once

#include <string_view>

namespace pellux {

enum class GhdlLineKind {
    located, ///< "file:line:col: text"
    tool,    ///< "ghdl-mcode: text": about no place in a source
    caret,   ///< blanks and a '^' under a quoted source line
    plain,   ///< anything else
};

enum class GhdlLevel { note, warning, error };

/// One line of GHDL's output, taken apart; the views lie in that line.
struct GhdlLine {
    GhdlLineKind kind = GhdlLineKind::plain;
    GhdlLevel level = GhdlLevel::error;
    std::string_view file; ///< of a located line
    int line = 0;          ///< from 1
    int column = 0;        ///< from 1, a tab reaching to the next multiple of 8
    std::string_view text; ///< without the level's word; of a plain line all of it
};

/// `program` is the path under which GHDL was called.
[[nodiscard]] GhdlLine parse_ghdl_line(std::string_view line, std::string_view program);

} // namespace pellux
