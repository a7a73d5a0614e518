#pragma once

#include "tools/driver/compile/compile_session.h"

#include <string_view>

namespace pellux {

/// Locks and reads the libraries. `ghdl` is the program that will write them.
[[nodiscard]] Failure open_session(CompileSession& session, const Plan& plan, bool only_changed,
                                   std::string_view ghdl, const WaitGuard& guard);

} // namespace pellux
