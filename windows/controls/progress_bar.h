#pragma once

#include "windows/toolkit/event.h"

#include <string_view>

namespace pellux {

// The progress bar: a custom control that shows how far something is, with a few words over it. It
// has no properties.

inline constexpr std::string_view k_progress_bar_class = "progress bar";
inline constexpr int k_progress_whole = 1000;

/// `part` of `k_progress_whole` is done.
void set_progress(Window progress_bar, int part, std::string_view words);

/// Handler of the class.
long progress_bar_event(void* context, Window window, const Event& event);

} // namespace pellux
