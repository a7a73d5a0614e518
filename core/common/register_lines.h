#pragma once

#include "core/common/containers.h"

#include <string_view>

namespace pellux {

// The lines of a program's register (docs/formats.md), each of which notes one thing.

enum class CopyKind { text, project };

struct KeptCopy {
    CopyKind kind = CopyKind::text;
    String file; ///< empty: of a text that has none
    String copy;
};

/// The first word of a line.
enum class RegisterWord { open, close, text, project, drop };

/// What the lines come to.
struct RegisterNotes {
    Vector<String> open; ///< files
    Vector<KeptCopy> copies;
};

/// The line with its end; the second path may be empty.
[[nodiscard]] String register_line(RegisterWord what, std::string_view first,
                                   std::string_view second = {});
/// One that is no line of a register notes nothing.
void apply_register_line(RegisterNotes& notes, std::string_view line);
/// A last line without an end, which a crash has cut off, counts for nothing; nor does a copy in a
/// place where none of ours lies.
[[nodiscard]] RegisterNotes parse_register(std::string_view text);

} // namespace pellux
