#pragma once

#include "core/diagnostics/message.h"

namespace pellux {

inline Message<const char*> msg_no_such_file{"E2100", "Can't find file '%s'."};

} // namespace pellux
