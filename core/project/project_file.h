#pragma once

#include "core/objects/object_writer.h"
#include "core/os/path.h"
#include "core/os/system_error.h"
#include "core/project/records.h"

#include <string_view>

namespace pellux {

/// What a project file says of itself.
struct ProjectHeader {
    NullableText kind{"ve"};
    NullableText version{"1x07"}; ///< one of `k_project_versions`
    NullableText description{"VHDL editor project"};
};

/// The layout of a version's text, which must match exactly; false for any other text.
[[nodiscard]] bool find_version(const NullableText& text, ProjectVersion& version);

/// Reads a project file; null after telling the user why. The project's directory is left empty.
[[nodiscard]] Owned<Project> read_project(std::string_view file_name);
/// The same, and what its header says.
[[nodiscard]] Owned<Project> read_project(std::string_view file_name, ProjectHeader& header);
/// Reads a project from memory; `name` is what messages call it.
[[nodiscard]] Owned<Project> read_project(std::span<const std::byte> bytes, std::string_view name,
                                          ProjectHeader& header);

/// How the writing of a project went. Who asked for it tells the user.
struct ProjectWriteResult {
    SystemError error = SystemError::none;
    SystemError directory_error = SystemError::none; ///< of a file that was written all the same
    bool attributes_lost = false; ///< owner, mode or attributes could not be kept
    PathBuffer old_contents;      ///< not empty: the file is damaged, its old bytes lie here
};

/// Writes the project into its directory under its file name, all or nothing; a project without a
/// file name is not written and that is no failure.
[[nodiscard]] ProjectWriteResult write_project(const Project& project);
/// Writes a file of the layout that `header` names; what an older one lacks is left out.
/// `permissions` are those of a file that is new.
[[nodiscard]] ProjectWriteResult write_project_as(const Project& project, std::string_view path,
                                                  const ProjectHeader& header,
                                                  std::uint32_t permissions = 0644);
/// The file's bytes into a sink.
[[nodiscard]] bool write_project_to(const Project& project, ByteSink sink,
                                    const ProjectHeader& header);

} // namespace pellux
