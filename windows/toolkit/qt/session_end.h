#pragma once

namespace pellux {

/// The desktop's session wants to end: asks the task window, which may refuse, and tells it the
/// end.
[[nodiscard]] bool session_may_end();

} // namespace pellux
