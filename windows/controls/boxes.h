#pragma once

#include "core/diagnostics/message.h"
#include "core/project/project_state.h"
#include "windows/toolkit/message_box.h"

#include <initializer_list>
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

/// Asks with one to three buttons, of which closing the box is none but a "Cancel": where closing
/// would stand for "No" it would lose something. -1 for none.
[[nodiscard]] int ask_carefully(const String& text, std::initializer_list<const char*> buttons);

/// What there is to say of the writing of a file, see `SafeWriter`.
struct WriteOutcome {
    SystemError error = SystemError::none;
    SystemError directory_error = SystemError::none;
    bool attributes_lost = false;
    std::string_view old_contents = {}; ///< where they lie, of a file that was damaged
};
void tell_outcome(const String& path, const WriteOutcome& outcome);
/// A file was damaged; nothing where `old_contents` is empty.
void tell_old_contents(const String& path, std::string_view old_contents);

/// To be asked before the text of an open editor is used in the place of its file. When that is not
/// what `loaded` says any more the user is asked whether to read it again, which loses the changes
/// of a text that `is_modified`. False when it stays as it is: also for a file that is gone.
[[nodiscard]] bool wants_new_version(std::string_view path, const FileIdentity& loaded,
                                     bool is_modified);

} // namespace pellux
