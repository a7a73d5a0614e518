#include "core/launch/launch_result.h"

#include "core/common/text_file.h"
#include "core/diagnostics/reporter.h"
#include "core/launch/messages.h"

namespace pellux {

void tell_launch_failure(const LaunchResult& result) {
    const char* path = result.path.c_str();
    switch (result.status) {
    case LaunchStatus::started:
        break;
    case LaunchStatus::still_running:
        tell(msg_still_running, path);
        break;
    case LaunchStatus::no_channel:
        tell(msg_no_channel, path, error_text(result.error).c_str());
        break;
    case LaunchStatus::no_response_file:
        tell(msg_no_response_file, path, error_text(result.error).c_str());
        break;
    case LaunchStatus::cannot_run:
        tell(msg_cannot_start, path);
        break;
    }
}

} // namespace pellux
