#pragma once

#include <span>
#include <string_view>

namespace pellux {

/// Compiles the project file: all of its sources, or those named in `selected` when that is not
/// null. What the compiler says goes to standard output. Answers the compiler's exit status, or
/// `k_status_unusable` after telling the user what is wrong.
[[nodiscard]] int compile_project_file(std::string_view file,
                                       const std::span<const char* const>* selected);

} // namespace pellux
