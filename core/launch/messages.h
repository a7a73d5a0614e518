#pragma once

#include "core/diagnostics/message.h"

namespace pellux {

inline Message<const char*> msg_cannot_start{"E1840", "Can't run '%s'."};
inline Message<const char*, const char*> msg_no_response_file{"E1841", "Can't write '%s': %s."};
inline Message<const char*, const char*> msg_no_channel{
    "E1842", "Can't talk to the compiler through '%s' (a directory of yours, mode 700): %s."};
inline Message<const char*> msg_not_started{"E1844", "%s"}; ///< the whole text of another one
inline Message<const char*> msg_still_running{"E1843", "'%s' is still running."};
inline Message<const char*, int> msg_program_crashed{"E2079", "'%s' crashed (signal %d)."};
inline Message<const char*, int> msg_program_never_spoke{
    "E2084", "'%s' ended with status %d and has said nothing."};
inline Message<const char*, int> msg_program_broke_off{
    "E2085", "'%s' ended with status %d and has told no result."};
inline Message<const char*> msg_program_given_up{"E2098", "'%s' says nothing and was given up."};

} // namespace pellux
