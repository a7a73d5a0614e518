#pragma once

#include "core/diagnostics/message.h"

namespace pellux {

inline Message<const char*> msg_abort_in_source{"E1", "%s: Abort:  "};
inline Message<> msg_abort{"E2", "Abort:  "};
inline Message<const char*, int, int> msg_position{"E14", "%s (line %d, col %d):  "};
inline Message<> msg_out_of_memory{"E21", "Out of memory."};
inline Message<const char*> msg_allocator_fault{"E22", "Memory allocation:  %s"};
inline Message<> msg_note{"E37", "Note: "};
inline Message<int> msg_error_limit{"E46", "Error limit (%d) exceeded"};
inline Message<int> msg_warning_limit{"E48", "Warning limit (%d) exceeded"};
inline Message<> msg_warning{"E62", "Warning: "};
inline Message<const char*> msg_no_report_file{"E67", "Can't open report file '%s'"};
inline Message<const char*> msg_missing_colon{"E71", "Read_text_msgs:  Missing ':' in message %s."};
inline Message<const char*> msg_two_versions{"E72", "Read_text_msgs:  2 versions of msg. %s."};
inline Message<const char*> msg_not_read{"E73", "Check_text_msgs:  Message '%s' not read."};
inline Message<const char*> msg_other_conversions{
    "E74", "Read_text_msgs:  Message %s does not take what its use gives."};

} // namespace pellux
