#include "tools/driver/compile/kept_warnings.h"

namespace pellux {

void keep_warning(Vector<RecordedWarning>& warnings, const SessionSource& source,
                  const Diagnostic& diagnostic) {
    if (diagnostic.level != GhdlLevel::warning)
        return;
    const bool is_own = diagnostic.file == source.name;
    add_warning(warnings, {is_own ? String() : diagnostic.file, diagnostic.line, diagnostic.column,
                           diagnostic.text});
}

void tell_kept_warnings(std::span<const RecordedWarning> warnings) {
    for (const RecordedWarning& warning : warnings)
        report_diagnostic(
            {GhdlLevel::warning, warning.file, warning.line, warning.column, warning.text},
            NoteOutput::report_file);
}

} // namespace pellux
