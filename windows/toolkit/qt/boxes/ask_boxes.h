#pragma once

#include "windows/toolkit/ask.h"

namespace pellux {

/// Answers with boxes on the screen, as long as there is an application object.
[[nodiscard]] AskSeam qt_ask();

} // namespace pellux
