#include "windows/controls/boxes.h"

#include "windows/controls/messages.h"

namespace pellux {

bool wants_new_version(std::string_view path, const FileIdentity& loaded, bool is_modified) {
    if (changed_on_disk(path, loaded) != DiskState::changed)
        return false;
    const String text =
        format_message(is_modified ? msg_changed_twice : msg_changed_on_disk, String(path).c_str());
    return xvt_dm_post_ask(k_yes, k_no, nullptr, "%s", text.c_str()) == 0;
}

} // namespace pellux
