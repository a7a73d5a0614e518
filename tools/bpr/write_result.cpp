#include "tools/bpr/write_result.h"

#include "core/diagnostics/reporter.h"
#include "tools/bpr/messages.h"

namespace pellux {

bool tell_write_result(const ProjectWriteResult& result, std::string_view path) {
    const String name(path);
    if (failed(result.error)) {
        char reason[200];
        tell(msg_bpr_cannot_write, name.c_str(), describe(result.error, reason).data());
    }
    if (!result.old_contents.empty())
        tell(msg_old_contents, name.c_str(), result.old_contents.c_str());
    if (result.attributes_lost)
        tell(msg_attributes_lost, name.c_str());
    return !failed(result.error);
}

} // namespace pellux
