#pragma once

#include "core/common/containers.h"
#include "core/os/files.h"

namespace pellux {

inline constexpr const char* k_response_file = "brix.rsp";
inline constexpr int k_response_files_max = 99; ///< held at one time in one directory

/// Writes `text` into a new file of the current directory, which takes the first of the names
/// "brix.rsp", "brix2.rsp", "brix3.rsp" ... that no launch of any program holds; what an earlier
/// launch left there is replaced. The name stays this launch's while `held` is open, and an old
/// file is never taken for the new one: a failure leaves `held` and `name` as they are.
///
/// On a file system without locks nothing is ever held, and "brix.rsp" is the last launch's.
[[nodiscard]] SystemError put_response_file(std::string_view text, File& held, String& name);

} // namespace pellux
