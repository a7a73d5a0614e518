#include "core/launch/launch_result.h"

#include "core/common/text_file.h"
#include "core/diagnostics/reporter.h"
#include "core/launch/messages.h"

namespace pellux {

String launch_failure_text(const LaunchResult& result) {
    const char* path = result.path.c_str();
    switch (result.status) {
    case LaunchStatus::started:
        break;
    case LaunchStatus::still_running:
        return format_message(msg_still_running, path);
    case LaunchStatus::no_channel:
        return format_message(msg_no_channel, path, error_text(result.error).c_str());
    case LaunchStatus::no_response_file:
        return format_message(msg_no_response_file, path, error_text(result.error).c_str());
    case LaunchStatus::cannot_run:
        return format_message(msg_cannot_start, path);
    }
    return {};
}

void tell_launch_failure(const LaunchResult& result) {
    if (!result)
        tell(msg_not_started, launch_failure_text(result).c_str());
}

} // namespace pellux
