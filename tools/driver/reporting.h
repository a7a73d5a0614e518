#pragma once

#include "core/common/text_file.h"
#include "tools/driver/output.h"

namespace pellux {

/// Points the reporter at `output`, until the program ends.
void report_to(Output& output);

/// Ends the program as a run with errors ends.
[[noreturn]] void end_run(Output& output);

/// Tells `failure` and answers its status.
ExitStatus report_failure(const Failure& failure);

/// "Can't read" and why, after `read_text_file` has answered `status` and `error`.
[[nodiscard]] Failure unreadable(ExitStatus end, const String& file, TextFileStatus status,
                                 SystemError error);

} // namespace pellux
