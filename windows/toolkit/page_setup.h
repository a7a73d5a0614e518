#pragma once

#include "windows/toolkit/print_record.h"

namespace pellux {

/// A page as it is usual where the user lives.
[[nodiscard]] PrintRecord xvt_print_get_default();
/// Asks for paper and orientation; false when the user cancels.
[[nodiscard]] bool xvt_dm_post_page_setup(PrintRecord& record);

} // namespace pellux
