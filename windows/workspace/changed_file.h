#pragma once

#include "core/project/project_state.h"

#include <string_view>

namespace pellux {

/// To be asked before the text of an open editor is used in the place of its file. When that is not
/// what `loaded` says any more the user is asked whether to read it again, which loses the changes
/// of a text that `is_modified`. False when it stays as it is: also for a file that is gone.
[[nodiscard]] bool wants_new_version(std::string_view path, const FileIdentity& loaded,
                                     bool is_modified);

} // namespace pellux
