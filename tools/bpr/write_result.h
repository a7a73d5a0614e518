#pragma once

#include "core/project/project_file.h"

namespace pellux {

/// Tells the user how the writing of a project file went; false when it failed.
[[nodiscard]] bool tell_write_result(const ProjectWriteResult& result, std::string_view path);

} // namespace pellux
