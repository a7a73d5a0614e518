#pragma once

#include "core/diagnostics/message.h"

namespace pellux {

inline Message<const char*> msg_cannot_start{"E1840", "Can't run '%s'."};
inline Message<const char*, const char*> msg_no_response_file{"E1841", "Can't write '%s': %s."};
inline Message<const char*, const char*> msg_no_channel{
    "E1842", "Can't talk to the compiler through '%s' (a directory of yours, mode 700): %s."};
inline Message<const char*> msg_not_started{"E1844", "%s"}; ///< the whole text of another one
inline Message<const char*> msg_still_running{"E1843", "'%s' is still running."};

} // namespace pellux
