#include "tools/driver/compile/kept_warnings.h"

namespace pellux {
namespace {

/// A source that makes a unit of another one is compiled every time, and this is said anew; where
/// it no longer does, it is no longer true.
constexpr std::string_view k_made_twice = "was also defined in file";

} // namespace

void keep_warning(Vector<RecordedWarning>& warnings, const SessionSource& source,
                  const Diagnostic& diagnostic) {
    if (diagnostic.level != GhdlLevel::warning ||
        view(diagnostic.text).find(k_made_twice) != std::string_view::npos)
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
