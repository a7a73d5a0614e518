#pragma once

#include "core/os/loop.h"

#include <optional>

namespace pellux {

/// The tools' own loop, one for the program.
[[nodiscard]] LoopOperations native_loop();
/// Ready to be read from while a descriptor that the loop watches is: another loop waits on it.
[[nodiscard]] SystemHandle native_loop_handle();
/// When the next timer is due, by `monotonic_ms`; none without one.
[[nodiscard]] std::optional<std::int64_t> native_loop_due_ms();
/// Lets it run again after `quit_loop`.
void clear_native_quit();

} // namespace pellux
