#include "windows/editor/other_program.h"

#include "core/common/run_register.h"
#include "windows/controls/boxes.h"
#include "windows/editor/messages.h"

namespace pellux {

void tell_of_other_program(const String& path, std::int64_t other) {
    if (other != 0)
        xvt_dm_post_note(
            "%s",
            format_message(msg_open_elsewhere, path.c_str(), static_cast<int>(other)).c_str());
}

std::optional<std::int64_t> ask_to_write_beside_other(const String& path, std::int64_t agreed) {
    const std::int64_t other = find_other_program(view(path));
    if (other == 0 || other == agreed)
        return other;
    const String text = format_message(msg_save_elsewhere, path.c_str(), static_cast<int>(other));
    return ask_carefully(text, {"&Save", k_cancel}) == 0 ? std::optional(other) : std::nullopt;
}

} // namespace pellux
