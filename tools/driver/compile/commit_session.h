#pragma once

#include "tools/driver/compile/compile_session.h"

namespace pellux {

/// Makes what was compiled the contents of the libraries, then records it beside the sources.
[[nodiscard]] Failure commit_session(CompileSession& session);

} // namespace pellux
