#pragma once

#include "core/os/loop.h"

namespace pellux {

/// The tools' own loop, one for the program.
[[nodiscard]] LoopOperations native_loop();
/// Lets it run again after `quit_loop`.
void clear_native_quit();

} // namespace pellux
