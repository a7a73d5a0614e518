#pragma once

#include "core/common/containers.h"
#include "core/os/system_error.h"
#include "tools/driver/exit_status.h"

#include <string_view>

namespace pellux {

/// A library and the directory, relative to the current one or absolute, that holds its files.
struct LibraryPlace {
    String name; ///< lower case
    String directory;

    bool operator==(const LibraryPlace&) const = default;
};

inline constexpr std::string_view k_work_library = "work";

/// Refuses, by its text, what is neither, in any case.
[[nodiscard]] Failure check_library_name(std::string_view given);

/// Makes the library's directory where it is missing, and tries whether it can be written.
[[nodiscard]] Failure prepare_library(const LibraryPlace& place);

/// What a failing operation on the library's files means for the run.
[[nodiscard]] Failure library_failure(const LibraryPlace& place, SystemError error);
/// The same, with the file in the library's directory that it is about.
[[nodiscard]] Failure library_failure(const LibraryPlace& place, std::string_view file,
                                      SystemError error);

} // namespace pellux
