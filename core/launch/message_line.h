#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace pellux {

/// A line of a compiler's text that names a place: "FILE (line N, col N): WORDS". The file's name
/// holds no blank. The views are parts of the line.
struct MessageLine {
    std::string_view file;
    std::int64_t line = 0;   ///< from 1, as all compilers count
    std::int64_t column = 0; ///< characters from 1, a tab as one; 0 is the line's start
    std::string_view words;
};

/// So many bytes of a line are looked at, at most.
inline constexpr std::size_t k_message_line_bytes = 255;

/// None for any other line, and for one that begins with a blank. `line` comes without its end.
[[nodiscard]] std::optional<MessageLine> parse_message_line(std::string_view line);

/// The name in "Compiling 'NAME", which a compiler says when it begins with a file; empty for any
/// other line.
[[nodiscard]] std::string_view compiling_file(std::string_view line);

} // namespace pellux
