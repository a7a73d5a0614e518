#pragma once

#include "core/os/files.h"

namespace pellux {

/// Replaces the contents of one file so that whatever happens, power loss included, the file holds
/// its old bytes or the new ones.
///
/// The usual method writes a temporary file beside the target, flushes it, renames it over the
/// target and flushes the directory; mode, owner, group and extended attributes go over, links are
/// followed to the file that they name. A target with several names, or in a directory where
/// nothing can be created or replaced, is first copied and flushed (beside it or in the user's
/// state directory), then written in place and its size checked; the copy goes when that has
/// succeeded. A file that we may not write, and anything but a regular file, is refused. GUI thread
/// or tool's only.
///
/// After a failure the old bytes stand, or, where even they could not be put back, lie in
/// `copy_path`. What fails once the new bytes are in place (making the new name last, removing the
/// copy) is no failure of the writing: `directory_error` tells it.
///
/// The copy of a file has a name that follows from the file's, so that it is found after a crash
/// (safe_copy.h), and bears it only once it is complete and flushed. A copy that is there already,
/// left behind by an earlier crash, may hold the only good bytes: it stays until a writing is
/// whole, and meanwhile the new copy takes the next of nine names. What a writing has left beside
/// the file that was cut off before its renaming goes with the next one that is whole. With all
/// nine in use the writing is refused (`is_taken`). While a file is written in place it is locked,
/// so that two programs never write into each other (`is_busy`).
struct SafeWriter {
    enum class Method { none, rename, in_place };

    Method method = Method::none;
    SystemError error = SystemError::none; ///< the first failure; what follows it does nothing
    SystemError directory_error = SystemError::none; ///< the new bytes stand all the same
    bool attributes_lost = false; ///< owner, mode or attributes could not be kept
    PathBuffer target;            ///< the file itself, all links followed, absolute
    PathBuffer temporary;         ///< of method `rename`
    PathBuffer copy_path;         ///< of method `in_place`
    File file;

    // The writer's own.
    File original;               ///< of method `rename`, null for a file that is new
    std::int64_t written = 0;    ///< bytes
    std::int64_t old_size = 0;   ///< bytes, of method `in_place`
    bool under_way = false;      ///< begun, neither committed nor abandoned
    bool target_touched = false; ///< of method `in_place`: the old bytes may be gone from it

    SafeWriter() = default;
    SafeWriter(const SafeWriter&) = delete;
    SafeWriter& operator=(const SafeWriter&) = delete;
    ~SafeWriter(); ///< abandons what was not committed
};

/// Chooses the method and opens what is written. `permissions` are those of a file that is new.
[[nodiscard]] SystemError begin_safe_write(SafeWriter& writer, std::string_view path,
                                           std::uint32_t permissions = 0644);
SystemError safe_append(SafeWriter& writer, std::span<const std::byte> bytes);
/// Makes the new bytes the file's contents; the error is the first of the whole writing.
[[nodiscard]] SystemError commit_safe_write(SafeWriter& writer);
void abandon_safe_write(SafeWriter& writer);

/// All of it at once.
[[nodiscard]] SystemError safe_write_file(std::string_view path, std::span<const std::byte> bytes);

} // namespace pellux
