#pragma once

#include "core/common/containers.h"
#include "core/common/content_sum.h"

#include <cstdint>
#include <string_view>

namespace pellux {

// Copies of work that is not saved, which are there after a crash. Beside a copy lies its base, the
// copy's name with ".base" behind it, which tells what the file was when the work began
// (docs/formats.md). All paths are absolute.

/// `DIR/peltmp/NAME` for `DIR/NAME`. A program that is not the first one with the file puts its
/// process number behind the name; 0 for the first.
[[nodiscard]] String copy_beside(std::string_view file, std::int64_t process = 0);
/// The same in the user's state directory, for a file whose own directory can't or shall not hold
/// one. Empty where the system names no such directory.
[[nodiscard]] String copy_apart(std::string_view file, std::int64_t process = 0);
/// For a text without a file: another one at each call of each program.
[[nodiscard]] String copy_of_no_file();

/// Makes the directory that a copy will lie in, and its way free. False when it can't be made, or
/// is none: what a link leads to is not ours to write to.
[[nodiscard]] bool prepare_copy(std::string_view copy);

/// What a new copy of the file may be to others: never more than the file is.
[[nodiscard]] std::uint32_t copy_permissions(std::string_view file);

/// Notes beside a copy what its file was when it was loaded or saved last, and whether the copy is
/// older than that. It is never flushed: what is lost of it counts as not there.
void write_copy_base(std::string_view copy, const ContentSum& file, bool is_saved);

enum class CopyState {
    none,           ///< there is no copy
    old,            ///< it holds nothing that is lost
    newer,          ///< it has work that the file has not
    beside_changed, ///< so it has, and somebody has changed the file since
};
/// A file that can't be looked at is older than any copy. Reads both where their times don't tell.
[[nodiscard]] CopyState look_at_copy(std::string_view file, std::string_view copy);

/// Does it lie where `copy_beside` says?
[[nodiscard]] bool is_beside_file(std::string_view copy);
/// Is that where our copies lie? What is read from a file may say anything.
[[nodiscard]] bool is_place_of_copies(std::string_view copy);

/// Removes it with its base, and with their directory beside the file when nothing else lies in it.
/// What is not there is removed already.
void remove_copy(std::string_view copy);

} // namespace pellux
