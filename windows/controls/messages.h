#pragma once

#include "core/diagnostics/message.h"

namespace pellux {

inline Message<const char*> msg_text_runs{"E2078", "%s - running"};
inline Message<> msg_no_dialog{"E2049", "Can't open dialog"};
inline Message<const char*, const char*> msg_file_unwritten{"E2050", "Can't write '%s': %s."};
inline Message<const char*, const char*> msg_file_old_contents{
    "E2051", "The old contents of '%s' lie in '%s'."};
inline Message<const char*> msg_file_attributes_lost{
    "E2052", "'%s' was written, but its owner, mode or attributes could not be kept."};
inline Message<const char*, const char*> msg_file_unreadable{"E2082", "Can't read '%s': %s."};
inline Message<const char*> msg_changed_on_disk{
    "E2074", "File '%s' has changed on disk.\nRead new version from disk?"};
inline Message<const char*> msg_changed_twice{
    "E2075", "File '%s' has changed on disk and memory.\nRead new version from disk?"};

} // namespace pellux
