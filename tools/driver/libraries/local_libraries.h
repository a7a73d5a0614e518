#pragma once

#include "core/os/system_error.h"
#include "tools/driver/compile/plan.h"

namespace pellux {

/// Finds the libraries that the options name and those that may be read besides: assigned in
/// "brix.rc", in the current directory, installed. The first place that has a library's name wins.
[[nodiscard]] Failure look_around(const Options& options, Surroundings& surroundings);

/// Makes the library's directory where it is missing, and tries whether it can be written.
[[nodiscard]] Failure prepare_library(const LibraryPlace& place);

/// What a failing operation on the library's files means for the run.
[[nodiscard]] Failure library_failure(const LibraryPlace& place, SystemError error);
/// The same, with the file in the library's directory that it is about.
[[nodiscard]] Failure library_failure(const LibraryPlace& place, std::string_view file,
                                      SystemError error);

} // namespace pellux
