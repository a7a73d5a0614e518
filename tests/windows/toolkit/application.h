#pragma once

#include "windows/toolkit/app.h"

#include <functional>

namespace pellux {

/// Runs `script` inside the loop of an application with a task window that has the resources of
/// `config` (none for 0), and takes all windows down afterwards. Events of the task window go to
/// `handler`.
void in_application(const std::function<void()>& script, const AppConfig& config = {},
                    EventHandler handler = {});

/// Hands over what waits, until nothing does.
void process_events();

} // namespace pellux
