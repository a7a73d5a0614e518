#pragma once

#include "windows/toolkit/ask.h"

namespace pellux {

/// Families of one width, which program text wants, are marked in the box.
[[nodiscard]] Answer ask_font(const Question& question);

} // namespace pellux
