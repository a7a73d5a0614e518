#pragma once

#include "tools/driver/ghdl/translator.h"
#include "tools/driver/output.h"

namespace pellux {

/// Points the reporter at `output`, until the program ends.
void report_to(Output& output);

/// Ends the program as a run with errors ends.
[[noreturn]] void end_run(Output& output);

/// Tells `failure` and answers its status.
ExitStatus report_failure(const Failure& failure);

enum class NoteOutput { shown, report_file };

/// Tells a diagnostic through the reporter. One without a source of its own is the current
/// source's.
void report_diagnostic(const Diagnostic& diagnostic, NoteOutput notes);

} // namespace pellux
