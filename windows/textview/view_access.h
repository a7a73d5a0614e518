#pragma once

#include "windows/textview/text_view.h"
#include "windows/toolkit/text_access.h"

namespace pellux {

/// A view as assistive technology reads it; good as long as the view.
[[nodiscard]] TextAccess access_to(TextView& view);

} // namespace pellux
