#pragma once

#include "windows/toolkit/app.h"

namespace pellux {

/// Commands of the task window's menus.
enum class TaskCommand : int { new_project = 1003, open = 1004, help_contents = 1005, quit = 1009 };

/// Makes the task window's menus, the start-up picture and the About box known.
void register_app_resources();
[[nodiscard]] AppConfig app_config();

} // namespace pellux
