#pragma once

#include "core/common/containers.h"
#include "core/os/system_error.h"

namespace pellux {

enum class LaunchStatus {
    started,
    still_running,    ///< the child of the launch before
    no_channel,       ///< the directory of the channels can't be used
    no_response_file, ///< the arguments can't be written
    cannot_run,       ///< the program
};

/// What came of starting a program. False in a condition when it was not started.
struct LaunchResult {
    LaunchStatus status = LaunchStatus::started;
    SystemError error = SystemError::none;
    String path; ///< what could not be used; empty when the program was started

    explicit operator bool() const { return status == LaunchStatus::started; }
};

/// Why a program was not started, with the path; empty for one that was.
[[nodiscard]] String launch_failure_text(const LaunchResult& result);
/// Tells why a program was not started, with the path; nothing about one that was.
void tell_launch_failure(const LaunchResult& result);

} // namespace pellux
