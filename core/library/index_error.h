#pragma once

#include "core/os/system_error.h"

struct sqlite3;

namespace pellux {

/// What SQLite's result `code` of a call on `database` (null: of none) means to the system.
[[nodiscard]] SystemError index_error(sqlite3* database, int code);

} // namespace pellux
