#pragma once

#include "core/common/containers.h"

#include <cstdint>

namespace pellux {

inline constexpr std::size_t k_command_line_max =
    128; ///< bytes with the NUL; above, a response file

/// The words that a program is started with, and what goes into the response file; the last word
/// names it by its usual name.
struct CommandLine {
    Vector<String> words; ///< element 0 is the program
    bool has_response = false;
    String response; ///< contents of the response file
};

/// Composes a command line from `argv` (ends with a null; element 0 is taken as given, the program
/// stands for it) with the pipe switch for `handle`, none for 0. Arguments that make it too long go
/// into the response file; the pipe switch never does.
[[nodiscard]] CommandLine compose_command_line(const char* program, std::uint64_t handle,
                                               const char* const* argv);

/// A word as it stands in a response file: in double quotes, with \" and \\, where it is empty or
/// holds a blank, tab, quote or line end.
[[nodiscard]] String response_word(std::string_view word);

} // namespace pellux
