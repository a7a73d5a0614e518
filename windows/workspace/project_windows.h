#pragma once

#include "windows/controls/shell_hooks.h"

namespace pellux {

/// Makes the windows of projects known, and ties what a user does in them to the commands; no
/// project is open.
void start_workspace(const ShellHooks& hooks);

} // namespace pellux
