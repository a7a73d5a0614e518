#pragma once

#include "windows/textview/text_view.h"

namespace pellux {

/// Takes note of how the text has changed since the last look.
void take_changes(TextView& view);
/// Has nothing been drawn yet? An update event for all of it is on its way then.
[[nodiscard]] bool is_undrawn(const TextView& view);

/// Calls the scroll callback; else only when the text has other lines or became wider.
void tell_scrolled(TextView& view, bool always);

} // namespace pellux
