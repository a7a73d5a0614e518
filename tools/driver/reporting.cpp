#include "tools/driver/reporting.h"

#include "core/common/callback.h"
#include "core/diagnostics/reporter.h"
#include "tools/driver/messages.h"

#include <cstdlib>

namespace pellux {
namespace {

void on_reported(void* context, std::string_view text) {
    print_lines(from_context<Output>(context), text);
}

/// The reporter ends the program at a limit.
void on_ending(void* context, int) {
    end_run(from_context<Output>(context));
}

Severity severity_of(GhdlLevel level) {
    switch (level) {
    case GhdlLevel::note:
        return Severity::note;
    case GhdlLevel::warning:
        return Severity::warning;
    case GhdlLevel::error:
        break;
    }
    return Severity::error;
}

} // namespace

void report_to(Output& output) {
    reporter().output = on_reported;
    reporter().output_context = &output;
    reporter().ending = on_ending;
    reporter().ending_context = &output;
}

void end_run(Output& output) {
    finish_output(output, ExitStatus::errors);
    std::exit(static_cast<int>(ExitStatus::errors));
}

ExitStatus report_failure(const Failure& failure) {
    error(-1, msg_as_it_stands, failure.text.c_str());
    return failure.status;
}

void report_diagnostic(const Diagnostic& diagnostic, NoteOutput notes) {
    const char* compiled = reporter().current_source;
    if (!diagnostic.file.empty())
        reporter().current_source = diagnostic.file.c_str();
    Report told;
    told.severity = severity_of(diagnostic.level);
    told.at = {diagnostic.line, diagnostic.column};
    told.to_report_file_only =
        diagnostic.level == GhdlLevel::note && notes == NoteOutput::report_file;
    report(told, msg_as_it_stands.text(), diagnostic.text.c_str());
    reporter().current_source = compiled;
}

} // namespace pellux
