#pragma once

#include "core/os/system_error.h"

#include <cstddef>
#include <string_view>

namespace pellux {

enum class FileOperation;

/// What the fault hook says of an operation that is about to happen.
[[nodiscard]] SystemError file_fault(FileOperation operation, std::string_view path,
                                     std::size_t& partial);
[[nodiscard]] SystemError file_fault(FileOperation operation, std::string_view path = {});

} // namespace pellux
