#pragma once

#include "core/os/process.h"

#include <string>
#include <vector>

namespace pellux {

/// How a run of the driver ended, with all that it printed.
struct BrixRun {
    int status = -1; ///< 1000 and the signal for one that was ended by it
    std::string text;
};

/// Starts the driver in the current directory; both its standard outputs are `output`.
void start_brix(Process& process, std::vector<const char*> words, SystemHandle output);
/// What comes from `handle` until it holds `wanted` or, with an empty `wanted`, until its end.
std::string read_until(SystemHandle handle, const std::string& wanted);
int status_of(ProcessEnd end);
BrixRun run_brix(std::vector<const char*> words);

} // namespace pellux
