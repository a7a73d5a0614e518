#pragma once

#include "core/project/project_file.h"

#include <string_view>

namespace pellux {

/// The project as a JSON document (docs/formats.md), with a line end behind it.
[[nodiscard]] String project_to_json(const Project& project, const ProjectHeader& header);

/// The project that `text` describes; null after telling the user where in the document `name`
/// something does not fit. What is left out is as in a new project.
[[nodiscard]] Owned<Project> project_from_json(std::string_view text, const char* name,
                                               ProjectHeader& header);

} // namespace pellux
