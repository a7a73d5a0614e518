#pragma once

#include "core/diagnostics/catalogue.h"
#include "core/diagnostics/reporter.h"
#include "core/os/files.h"
#include "core/os/interruption.h"
#include "core/os/process.h"
#include "tools/driver/messages.h"
#include "tools/driver/reporting.h"

#include <span>

namespace pellux {

/// What a program does between its first and its last instruction; answers its exit status. `name`
/// is what its messages call it.
template <typename Options>
int run_tool(const char* name, std::span<char* const> words,
             Failure (*parse)(std::span<const char* const>, Options&),
             ExitStatus (*run)(const Options&, Output&)) {
    make_size_limit_an_error();
    start_diagnostics(name);
    notice_interruption(nullptr);
    Options options;
    const Failure failure = parse(words.subspan(words.empty() ? 0 : 1), options);
    Output output;
    if (options.channel != 0 && !connect_output(output, options.channel)) {
        tell_on_standard_errors(format_message(msg_no_environment));
        return static_cast<int>(ExitStatus::arguments);
    }
    report_to(output);
    const ExitStatus status = failure ? report_failure(failure) : run(options, output);
    return static_cast<int>(finish_output(output, status));
}

} // namespace pellux
