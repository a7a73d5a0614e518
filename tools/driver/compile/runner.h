#pragma once

#include "tools/driver/compile/options.h"
#include "tools/driver/output.h"

namespace pellux {

/// Carries out what `options` ask for, reporting everything through the reporter, whose output and
/// end lead to `output`. The current directory is the project's.
[[nodiscard]] ExitStatus run_compiler(const Options& options, Output& output);

} // namespace pellux
