#pragma once

#include "core/os/handle.h"
#include "core/os/path.h"
#include "core/os/system_error.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace pellux {

// Files and directories. Paths are bytes, relative ones count from the current directory. Every
// call answers the system's error and leaves its results untouched on failure. Interrupted calls
// are repeated.

enum class FileKind { none, regular, directory, link, other };

struct FileStat {
    FileKind kind = FileKind::none;
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::uint64_t links = 0;
    std::int64_t size = 0;
    std::int64_t modified_ns = 0; ///< since 1970-01-01, UTC
    std::uint32_t mode = 0;       ///< permission bits
    std::uint32_t owner = 0;
    std::uint32_t group = 0;
};

enum class OpenMode {
    read,     ///< an existing regular file; never waits, a directory or device is refused
    truncate, ///< written from its start, created when missing
    create,   ///< written, must not exist yet
    append,   ///< written at its end, created when missing
    update,   ///< an existing file, read and written in place
};

/// An open file. Closing by the destructor ignores errors: what was written for keeps is closed
/// with `close_file`.
struct File {
    OwnedHandle handle;
    explicit operator bool() const { return static_cast<bool>(handle); }
};

[[nodiscard]] SystemError open_file(File& file, std::string_view path, OpenMode mode,
                                    std::uint32_t permissions = 0644);
/// Reads up to `into.size()` bytes; `got` 0 means the end. A read that fails may have written to
/// `into`.
[[nodiscard]] SystemError read_some(File& file, std::span<std::byte> into, std::size_t& got);
/// The same at `offset`, the file's own position unchanged; short only at the end.
[[nodiscard]] SystemError read_at(File& file, std::int64_t offset, std::span<std::byte> into,
                                  std::size_t& got);
/// A failure leaves a part of `bytes` written.
[[nodiscard]] SystemError write_all(File& file, std::span<const std::byte> bytes);
/// The same at `offset`, the file's own position unchanged.
[[nodiscard]] SystemError write_at(File& file, std::int64_t offset,
                                   std::span<const std::byte> bytes);
[[nodiscard]] SystemError truncate_file(File& file, std::int64_t size);
/// Returns when the file's bytes and size lie on the disk.
[[nodiscard]] SystemError flush_file(File& file);
/// The file is closed whatever is answered.
[[nodiscard]] SystemError close_file(File& file);

/// `exclusive` excludes every other lock, `shared` the exclusive ones only.
enum class FileLock { shared, exclusive };
/// Locks the file against locks of other openers, in this program too, until it is closed; never
/// waits (`is_busy`). A file system without locks answers success.
[[nodiscard]] SystemError lock_file(File& file, FileLock lock);
/// Gives `to` the mode, owner, group and extended attributes of `from`, as far as the system lets
/// us; `lost` tells whether something of them stayed behind. What cannot be kept never widens
/// anybody's rights.
[[nodiscard]] SystemError copy_attributes(File& from, File& to, bool& lost);

[[nodiscard]] SystemError stat_file(std::string_view path, FileStat& stat); ///< follows links
[[nodiscard]] SystemError stat_link(std::string_view path, FileStat& stat); ///< does not
[[nodiscard]] SystemError stat_open_file(File& file, FileStat& stat);
[[nodiscard]] bool file_exists(std::string_view path);
/// A file that is there, and that its mode or the system keeps us from writing. One that nobody may
/// write is that for an administrator too.
[[nodiscard]] bool is_write_protected(std::string_view path);
[[nodiscard]] SystemError read_link(std::string_view path, PathBuffer& target);

[[nodiscard]] SystemError rename_file(std::string_view from, std::string_view to);
/// The same, refused when there is something named `to` (`is_taken`).
[[nodiscard]] SystemError rename_to_new_name(std::string_view from, std::string_view to);
/// Each gets the name of the other, in one step; not every file system can.
[[nodiscard]] SystemError exchange_files(std::string_view one, std::string_view other);
[[nodiscard]] SystemError remove_file(std::string_view path);
[[nodiscard]] SystemError make_directory(std::string_view path, std::uint32_t permissions = 0755);
/// Makes the directory and those above it that are missing, and flushes their names; one that
/// exists is a success.
[[nodiscard]] SystemError make_directories(std::string_view path, std::uint32_t permissions = 0755);
[[nodiscard]] SystemError remove_directory(std::string_view path);
/// Returns when the names in the directory lie on the disk.
[[nodiscard]] SystemError flush_directory(std::string_view path);

/// One entry of a directory, "." and ".." apart; false ends the listing.
using DirectoryVisitor = bool (*)(void* context, std::string_view name, FileKind kind);
[[nodiscard]] SystemError list_directory(std::string_view path, DirectoryVisitor visit,
                                         void* context);

[[nodiscard]] SystemError change_directory(std::string_view path);
[[nodiscard]] SystemError current_directory(PathBuffer& path);
/// The path with links and dots resolved; the file must exist.
[[nodiscard]] SystemError real_path(std::string_view path, PathBuffer& resolved);

/// A name in the directory of `path` that nobody uses, for a file that will replace `path`; every
/// call of every program answers another one. False when the path is too long.
[[nodiscard]] bool temporary_name(std::string_view path, PathBuffer& name);
/// Removes the files of such names beside `path` whose programs have ended. Nobody is told of one
/// that stays.
void remove_left_temporaries(std::string_view path);
/// Makes and opens a new file of such a name.
[[nodiscard]] SystemError create_temporary(std::string_view path, std::uint32_t permissions,
                                           File& file, PathBuffer& name);

/// From now on a writing that exceeds the largest file size fails; until then the system ends the
/// program for it. For the start of a program.
void make_size_limit_an_error();

/// The operations that a test can make fail.
enum class FileOperation : int {
    open,
    read,
    write,
    truncate,
    flush,
    close,
    stat,
    rename,
    remove,
    make_directory,
    flush_directory,
    list,
    attributes,
    lock,
};

/// Tests decide the fate of each operation: `none` lets it happen, anything else is its error.
/// A failing write first writes `partial` (0 unless the hook sets it) bytes of what was asked.
/// `path` is empty for operations on an open file. Null removes the hook.
using FileFaultHook = SystemError (*)(void* context, FileOperation operation, std::string_view path,
                                      std::size_t& partial);
void set_file_fault_hook(FileFaultHook hook, void* context);

} // namespace pellux
