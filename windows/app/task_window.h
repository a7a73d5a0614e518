#pragma once

#include "windows/app/shell.h"

namespace pellux {

/// Takes the events of the task window: it starts the program, and ends it.
[[nodiscard]] EventHandler task_handler(Shell& shell);

} // namespace pellux
