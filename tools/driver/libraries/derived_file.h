#pragma once

#include "core/os/path.h"
#include "core/os/system_error.h"

#include <string_view>

namespace pellux {

/// What a file was that has been replaced, to become the next one that is written: a new one is
/// dear on a file system that has removed many lately. Removed at its end.
struct SpareFile {
    PathBuffer name; ///< empty: there is none

    SpareFile() = default;
    SpareFile(const SpareFile&) = delete;
    SpareFile& operator=(const SpareFile&) = delete;
    ~SpareFile();
};

/// Replaces a file that can be made anew from others: as a whole, so that no reader meets half of
/// it, but without waiting for the disk. Its reader must find out what a loss of power left.
/// `spare` is for one of many that are written in turn: who has read half of the old file by then
/// may go on in the next one, and must find that out too.
[[nodiscard]] SystemError write_derived_file(std::string_view path, std::string_view text,
                                             SpareFile* spare = nullptr);

/// Can files be written beside `path`? Leaves nothing there.
[[nodiscard]] SystemError try_writing(std::string_view path);

} // namespace pellux
