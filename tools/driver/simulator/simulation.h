#pragma once

#include "tools/driver/output.h"
#include "tools/driver/simulator/simulation_options.h"

namespace pellux {

/// Carries out what `options` ask for, reporting everything through the reporter, whose output and
/// end lead to `output`. The current directory is the project's.
[[nodiscard]] ExitStatus run_simulation(const SimulationOptions& options, Output& output);

} // namespace pellux
