#pragma once

#include "core/os/files.h"

namespace pellux {

// The copies that the safe writer takes before it writes a file in place. A copy beside its file
// is named after the file; one in the user's state directory is named after a hash of the file's
// full path, and the path itself stands in a second file, the copy's name with ".path" behind it.
// `target` is always absolute and no link.

/// The file that `path` names in the end: links are followed, `target` becomes absolute. A file
/// that is missing (a dangling link's, too) gives the kind `none`; anything but a regular file is
/// refused.
[[nodiscard]] SystemError find_target(std::string_view path, PathBuffer& target, FileStat& stat);

/// Copies the `size` bytes of `original` and flushes them; only then does the copy get its name.
[[nodiscard]] SystemError make_safe_copy(File& original, std::int64_t size, std::string_view target,
                                         PathBuffer& copy);

/// The oldest copy that an interrupted in-place writing of `path` left behind; false when there is
/// none or the file is being written just now. The next one is found once it is removed by
/// `remove_interrupted_copy`.
[[nodiscard]] bool find_interrupted_copy(std::string_view path, PathBuffer& copy);
[[nodiscard]] SystemError remove_interrupted_copy(std::string_view copy);

/// Reads `from` from its start and writes its bytes to the start of `to`; `size` is their number.
[[nodiscard]] SystemError copy_bytes(File& from, File& to, std::int64_t& size);

/// Flushes and closes a file that must have `size` bytes.
[[nodiscard]] SystemError finish_file(File& file, std::int64_t size);

} // namespace pellux
