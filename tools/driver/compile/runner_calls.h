#pragma once

#include "tools/driver/compile/runner_state.h"

namespace pellux {

// The calls of GHDL in a run, and what becomes of what it says.

/// Before the first call, once the session is open.
void set_up_calls(Runner& runner);
/// Tells what GHDL says of the source that it works on.
void tell(Runner& runner, Diagnostic diagnostic);
/// By the user.
[[nodiscard]] bool is_asked_to_stop(const Runner& runner);
/// The same, or GHDL runs for nothing; `context` is the runner.
[[nodiscard]] bool on_stop_question(void* context);
[[nodiscard]] GhdlEnd run_to_end(Runner& runner, const Vector<String>& words);
/// True when GHDL calls it a success; else the reason is told.
[[nodiscard]] bool call_ghdl(Runner& runner, const Vector<String>& words);
/// GHDL's own word on what it is; empty when it says nothing.
[[nodiscard]] String ghdl_version(Runner& runner);

} // namespace pellux
