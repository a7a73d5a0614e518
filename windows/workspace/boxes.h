#pragma once

#include "core/diagnostics/message.h"
#include "windows/toolkit/message_box.h"

#include <type_traits>

namespace pellux {

/// A message in an error box.
template <typename... Arguments>
void post_error(Message<Arguments...>& message, std::type_identity_t<Arguments>... arguments) {
    xvt_dm_post_error("%s", format_message(message, arguments...).c_str());
}

inline constexpr const char* k_ok = "OK";
inline constexpr const char* k_cancel = "Cancel";
inline constexpr const char* k_yes = "Yes";
inline constexpr const char* k_no = "No";

} // namespace pellux
