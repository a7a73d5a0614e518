#include "core/library/index_error.h"

#include <sqlite3.h>

#include <cerrno>

namespace pellux {

SystemError index_error(sqlite3* database, int code) {
    switch (code & 0xFF) {
    case SQLITE_OK:
    case SQLITE_ROW:
    case SQLITE_DONE:
        return SystemError::none;
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return SystemError{EBUSY};
    case SQLITE_FULL:
        return SystemError{ENOSPC};
    case SQLITE_NOMEM:
        return SystemError{ENOMEM};
    case SQLITE_READONLY:
        return SystemError{EROFS};
    case SQLITE_PERM:
    case SQLITE_AUTH:
        return SystemError{EACCES};
    case SQLITE_CANTOPEN:
    case SQLITE_IOERR:
        // SQLite keeps no number of what fails in a commit; the system still has it.
        if (const int number = sqlite3_system_errno(database); number != 0)
            return SystemError{number};
        if (errno != 0)
            return SystemError{errno};
        break;
    default:
        break;
    }
    return refuse(Refusal::damaged);
}

} // namespace pellux
