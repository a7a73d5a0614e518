#include "core/diagnostics/reporter.h"
#include "core/os/files.h"
#include "core/os/process.h"
#include "tools/driver/interruption.h"
#include "tools/driver/messages.h"
#include "tools/driver/options.h"
#include "tools/driver/runner.h"

#include <cstddef>
#include <span>

namespace {

using namespace pellux;

/// Without its channel the program has no place for its text but standard error.
int refuse_to_run() {
    const String text = format_message(msg_no_environment) + "\n";
    static_cast<void>(write_handle(standard_errors(), std::as_bytes(std::span(text))));
    return static_cast<int>(ExitStatus::arguments);
}

} // namespace

int main(int argc, char** argv) {
    make_size_limit_an_error();
    start_diagnostics("BRIX");
    notice_interruption();
    Options options;
    const std::span<const char* const> words(argv, static_cast<std::size_t>(argc));
    const Failure failure =
        parse_arguments(words.subspan(words.empty() ? 0 : 1), disk_response_reader(), options);
    Output output;
    if (options.channel != 0 && !connect_output(output, options.channel))
        return refuse_to_run();
    report_to(output);
    const ExitStatus status = failure ? tell_failure(failure) : run_compiler(options, output);
    finish_output(output, status);
    return static_cast<int>(status);
}
