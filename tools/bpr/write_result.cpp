#include "tools/bpr/write_result.h"

#include "core/common/text_file.h"
#include "core/diagnostics/reporter.h"
#include "core/project/messages.h"
#include "tools/bpr/messages.h"

namespace pellux {

bool tell_write_result(const ProjectWriteResult& result, std::string_view path) {
    const String name(path);
    if (failed(result.error))
        tell(msg_bpr_cannot_write, name.c_str(), error_text(result.error).c_str());
    if (!result.old_contents.empty())
        tell(msg_old_contents, name.c_str(), result.old_contents.c_str());
    if (result.attributes_lost)
        tell(msg_attributes_lost, name.c_str());
    if (failed(result.directory_error))
        tell(msg_directory_behind, name.c_str(), error_text(result.directory_error).c_str());
    return !failed(result.error);
}

} // namespace pellux
