#pragma once

#include "windows/toolkit/ask.h"

namespace pellux {

/// A dialog stays on the screen until `close_dialog` with its number; one of number 0 goes with its
/// answer.
[[nodiscard]] Answer ask_dialog(const Question& question);
void close_dialog(std::uint64_t dialog);

/// A prompt for a line of text.
[[nodiscard]] Answer ask_string(const Question& question);

} // namespace pellux
