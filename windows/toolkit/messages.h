#pragma once

#include "core/diagnostics/message.h"

namespace pellux {

inline Message<const char*> msg_typed_file_missing{"E2100", "Can't find file '%s'."};

} // namespace pellux
