#pragma once

#include "windows/app/shell.h"
#include "windows/toolkit/app.h"

namespace pellux {

// The task window: its menus, its About box, and what its events do. It starts the program, and
// ends it.

/// Commands of its menus.
enum class TaskCommand : int { new_project = 1003, open = 1004, help_contents = 1005, quit = 1009 };

void register_task_window();
[[nodiscard]] AppConfig app_config();
[[nodiscard]] EventHandler task_handler(Shell& shell);

} // namespace pellux
