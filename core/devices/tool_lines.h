#pragma once

#include "core/common/containers.h"
#include "core/devices/catalogue_file.h"

#include <cstddef>
#include <string_view>

namespace pellux {

/// An entry of the Tools menu: a program that the user may start.
struct ToolLine {
    static constexpr std::size_t k_no_mnemonic = static_cast<std::size_t>(-1);

    String label;
    std::size_t mnemonic = k_no_mnemonic; ///< where in the label its character stands
    Vector<String> words; ///< the program and its arguments as they are written; may be none
};

/// Takes a line apart. Its label is quoted, or its first word; '~' stands before the label's
/// mnemonic. False for a line of less than two words, which is no tool.
[[nodiscard]] bool parse_tool_line(std::string_view line, ToolLine& tool);

/// The tools of the catalogue's section "tools_dos", in its order, up to a line that is too long;
/// none without catalogue or section.
[[nodiscard]] Vector<ToolLine> read_tool_lines(CatalogueReader& reader);
/// The tools among the lines of a text, in which '#' begins a comment's line.
[[nodiscard]] Vector<ToolLine> parse_tool_lines(std::string_view text);

/// `word` with each `$NAME` (letters, digits, underlines) as the environment has it, or as NAME
/// where it has not.
[[nodiscard]] String expand_environment(std::string_view word);

} // namespace pellux
