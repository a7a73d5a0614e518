#pragma once

#include "core/diagnostics/message.h"
#include "core/project/project_state.h"
#include "windows/toolkit/message_box.h"

#include <string_view>
#include <type_traits>

namespace pellux {

// Boxes and questions that windows of several kinds show alike.

/// A message in an error box.
template <typename... Arguments>
void post_error(Message<Arguments...>& message, std::type_identity_t<Arguments>... arguments) {
    xvt_dm_post_error("%s", format_message(message, arguments...).c_str());
}

inline constexpr const char* k_ok = "OK";
inline constexpr const char* k_cancel = "Cancel";
inline constexpr const char* k_yes = "Yes";
inline constexpr const char* k_no = "No";

/// To be asked before the text of an open editor is used in the place of its file. When that is not
/// what `loaded` says any more the user is asked whether to read it again, which loses the changes
/// of a text that `is_modified`. False when it stays as it is: also for a file that is gone.
[[nodiscard]] bool wants_new_version(std::string_view path, const FileIdentity& loaded,
                                     bool is_modified);

} // namespace pellux
