#pragma once

#include "core/common/containers.h"
#include "core/common/text_file.h"

#include <cstddef>
#include <string_view>

namespace pellux {

inline constexpr std::string_view k_rc_file = "brix.rc"; ///< in the current directory
inline constexpr std::size_t k_rc_file_max = 1U << 20U;  ///< bytes
inline constexpr std::size_t k_rc_piece = 150;           ///< bytes

/// The user's assignments of library names to directories. docs/formats.md has the format.
struct RcFile {
    /// All bytes of the file in their order: its lines, each with its line end; of a line that has
    /// more than `k_rc_piece` bytes before its end, pieces of so many and the rest.
    Vector<String> lines;
};

[[nodiscard]] RcFile parse_rc_file(std::string_view text);
/// Reads the file; one that is missing is empty. `error` says what went wrong when it `failed`.
[[nodiscard]] TextFileStatus read_rc_file(RcFile& file, SystemError& error);

/// One line's assignment; false ends the walk. The first one of a library is the one in force.
using AssignmentVisitor = bool (*)(void* context, std::string_view library,
                                   std::string_view directory);
void for_each_assignment(const RcFile& file, void* context, AssignmentVisitor visit);

/// The directory, as it stands there, that the first line for `library` (its case ignored) assigns.
[[nodiscard]] bool find_assigned_directory(const RcFile& file, std::string_view library,
                                           String& directory);

} // namespace pellux
