#pragma once

#include "tools/driver/plan.h"

namespace pellux {

/// What the current directory holds; nothing when it cannot be listed.
[[nodiscard]] Surroundings look_around(VhdlStandard standard);

/// Makes the library's directory where it is missing, and tries whether it can be written.
[[nodiscard]] Failure prepare_library(const LibraryPlace& place);

/// The same trial alone, after GHDL failed on the library.
[[nodiscard]] Failure try_library(const LibraryPlace& place);

} // namespace pellux
