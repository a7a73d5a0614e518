#pragma once

#include "core/diagnostics/message.h"

namespace pellux {

inline Message<const char*> msg_changed_on_disk{
    "E2074", "File '%s' has changed on disk.\nRead new version from disk?"};
inline Message<const char*> msg_changed_twice{
    "E2075", "File '%s' has changed on disk and memory.\nRead new version from disk?"};

} // namespace pellux
