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

} // namespace

void report_to(Output& output) {
    reporter().output = on_reported;
    reporter().output_context = &output;
    reporter().ending = on_ending;
    reporter().ending_context = &output;
}

void end_run(Output& output) {
    std::exit(static_cast<int>(finish_output(output, ExitStatus::errors)));
}

ExitStatus report_failure(const Failure& failure) {
    error(-1, msg_as_it_stands, failure.text.c_str());
    return failure.status;
}

Failure unreadable(ExitStatus end, const String& file, TextFileStatus status, SystemError error) {
    const String reason = status == TextFileStatus::too_large ? format_message(msg_file_too_large)
                                                              : error_text(error);
    return {end, format_message(msg_cannot_read, file.c_str(), reason.c_str())};
}

} // namespace pellux
