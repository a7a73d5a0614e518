#pragma once

#include "core/os/system_error.h"
#include "core/project/records.h"

#include <cstdint>
#include <string_view>

namespace pellux {

// Has a project changed since it was read or written: in memory, on the disk?

/// What the project's file holds, the time of its writing apart: two images differ when a writing
/// between them would have changed the file. Empty when no file could hold the project.
[[nodiscard]] Vector<std::byte> project_image(const Project& project);
/// The same without what a project only remembers, which never makes it changed: rectangles of
/// windows, seconds of the last compile, place and font of the compile window. The project is
/// afterwards as it was.
[[nodiscard]] Vector<std::byte> project_content(Project& project);

/// Which contents a path had; all 0 where there was no file.
struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::int64_t size = 0;        ///< bytes
    std::int64_t modified_ns = 0; ///< since 1970-01-01, UTC

    bool operator==(const FileIdentity&) const = default;
};

/// To be asked right before reading and right after writing; links are followed.
[[nodiscard]] SystemError identify_file(std::string_view path, FileIdentity& identity);

enum class DiskState {
    same,
    changed, ///< other contents, or nobody can tell
    gone,
};
[[nodiscard]] DiskState changed_on_disk(std::string_view path, const FileIdentity& known);

} // namespace pellux
