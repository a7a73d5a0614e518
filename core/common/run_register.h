#pragma once

#include "core/common/register_lines.h"
#include "core/os/files.h"

#include <string_view>

namespace pellux {

// What the user's running programs work on. Each has a file in the user's state directory, locked
// as long as it runs, that names the files that it has open and where the copies of its unsaved
// work lie (docs/formats.md). One that nobody locks was left by a crash. Nobody is told where there
// can be no such file: then there are no others to know of, and nothing is offered after a crash.

/// Begins the register of this program; before, the notes below do nothing.
void begin_register();
/// Ends it. It is left where copies are noted in it.
void end_register();

void note_opened(std::string_view file);
void note_closed(std::string_view file);
/// A copy lies there from now on.
void note_copy(const KeptCopy& kept);
/// Is it noted here, as somebody's work?
[[nodiscard]] bool is_noted_copy(std::string_view copy);
/// It has gone.
void note_copy_gone(std::string_view copy);

/// The process that another running program is, which has the file open; 0: there is none.
[[nodiscard]] std::int64_t find_other_program(std::string_view file);

/// What a program left that ended without closing its work. As long as it is held no other program
/// takes it.
struct LeftRegister {
    String path;
    File file;
    Vector<KeptCopy> copies; ///< that are noted; each may have gone
};
[[nodiscard]] Vector<LeftRegister> take_left_registers();
/// Somebody has dealt with that copy.
void drop_left_copy(LeftRegister& left, std::string_view copy);

} // namespace pellux
