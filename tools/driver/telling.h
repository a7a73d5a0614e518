#pragma once

#include "tools/driver/output.h"
#include "tools/driver/translator.h"

namespace pellux {

/// Points the reporter at `output`, until the program ends.
void report_to(Output& output);

/// Ends the program as a run with errors ends.
[[noreturn]] void end_run(Output& output);

/// Tells `failure` and answers its status.
ExitStatus tell_failure(const Failure& failure);

enum class NoteRoad { shown, to_report_file };

/// Tells a diagnostic through the reporter. One without a source of its own is the current
/// source's.
void tell_diagnostic(const Diagnostic& diagnostic, NoteRoad notes);

} // namespace pellux
