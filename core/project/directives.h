#pragma once

#include "core/project/records.h"

#include <string_view>

namespace pellux {

// Directive lines of a VHDL source (docs/formats.md): lines whose first two characters are "#$".
// A line ends with a LF; what is read of a directive ends before a CR as well.

/// Reads what the directives of a source say: the compiler's switches, with blanks between them,
/// and the last device and package that are named, empty without one. A file that cannot be read,
/// or has more than 64 MB, says nothing, and the answer is false.
bool scanDirectives(std::string_view file_name, String& options, String& device, String& package);

/// Gives options the flags that stand for the same as those switches of directives; what no flag
/// stands for ("-fm", "-fs") is passed over.
void take_switches(Source_options& options, std::string_view switches);

[[nodiscard]] bool has_directives(std::string_view source);
/// A copy in which directive lines are empty. Every CR and LF stays, so that lines keep their
/// numbers; what follows a lone CR, where compilers begin a line, stays too.
[[nodiscard]] String without_directives(std::string_view source);

} // namespace pellux
