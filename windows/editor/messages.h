#pragma once

#include "core/diagnostics/message.h"

namespace pellux {

inline Message<> msg_keywords_lacking{"E2130", "Can't find 'vhdl.tok' for highlighting keywords."};

} // namespace pellux
