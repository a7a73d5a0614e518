#pragma once

#include "core/common/containers.h"
#include "core/os/system_error.h"

#include <string_view>

namespace pellux {

/// A directory of one run's own, in which GHDL writes: a library changes only when the run replaces
/// its files as a whole, whatever becomes of the run. Goes with the structure.
struct RunDirectory {
    String path; ///< empty: none

    RunDirectory() = default;
    RunDirectory(const RunDirectory&) = delete;
    RunDirectory& operator=(const RunDirectory&) = delete;
    ~RunDirectory();
};

/// Removes the temporary files that runs which are gone left for files that only runs write.
void remove_half_written(std::string_view directory);
/// The same in a library's directory, and the directories of those runs.
void remove_leftovers(std::string_view library_directory);

/// Makes it inside `parent`.
[[nodiscard]] SystemError make_run_directory(RunDirectory& directory, std::string_view parent);
void remove_run_directory(RunDirectory& directory);

} // namespace pellux
