#pragma once

#include "core/diagnostics/message.h"

namespace pellux {

inline Message<const char*> msg_error_reading{"E1820", "Error reading '%s'."};
inline Message<const char*, const char*> msg_error_reading_why{"E1827", "Error reading '%s'. %s"};
inline Message<> msg_no_such_file{"E1828", "There is no such file."};
inline Message<> msg_is_directory{"E1829", "It is a directory."};
inline Message<const char*, const char*> msg_version_not_supported{
    "E1821", "Project '%s' version '%s' is not supported."};
inline Message<const char*> msg_cannot_find{"E1822", "Cannot find '%s'."};
inline Message<const char*, const char*> msg_interrupted_copy{
    "E1823", "'%s' was not written to its end; its old contents lie in '%s'."};
inline Message<const char*, const char*> msg_directory_behind{
    "E1826", "'%s' was written, but its directory could not be brought up to date: %s."};

} // namespace pellux
