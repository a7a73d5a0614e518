#pragma once

#include "tools/driver/compile/runner_state.h"

#include <cstddef>

namespace pellux {

// Both answer a failure of the run; one of a source alone is told.

/// Decides on a source, which waits for the call that analyses it.
[[nodiscard]] Failure analyse(Runner& runner, std::size_t source);
/// Analyses what waits, in as few calls as come to the same as one for each source.
[[nodiscard]] Failure analyse_batch(Runner& runner);

} // namespace pellux
