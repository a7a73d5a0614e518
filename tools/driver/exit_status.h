#pragma once

#include "core/common/containers.h"

namespace pellux {

/// How the driver ends; the values are its exit statuses.
enum class ExitStatus : int {
    nothing_failed = 0,
    errors = 1,    ///< in the design, or GHDL failed on a file
    arguments = 2, ///< the command line cannot be understood
    no_ghdl = 3,
    no_room = 4,     ///< no right to write a library, or no room for it
    bad_library = 5, ///< a library that cannot be compiled into
};

/// Why a run cannot go on: the status that it ends with and the one line that says why.
struct Failure {
    ExitStatus status = ExitStatus::nothing_failed;
    String text;

    explicit operator bool() const { return status != ExitStatus::nothing_failed; }
};

} // namespace pellux
