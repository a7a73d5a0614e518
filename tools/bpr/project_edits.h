#pragma once

#include "core/project/project_file.h"
#include "tools/bpr/source_lists.h"

#include <cstddef>
#include <span>
#include <string_view>

namespace pellux {

/// A project that is changed where it lies.
struct EditedProject {
    String file;
    ProjectHeader header;
    Owned<Project> project;
};

// Each answers false after telling what is wrong; the project in memory may be half changed then,
// its file is not.

/// Reads the project of a file.
[[nodiscard]] bool open_project(EditedProject& edited, const char* file);
/// Begins a project whose file is not there yet.
[[nodiscard]] bool start_project(EditedProject& edited, const char* file);
/// Writes what it has become.
[[nodiscard]] bool close_project(const EditedProject& edited);

/// Adds files at the end; one that is listed already stays as it is. `library` is for those whose
/// list says none.
[[nodiscard]] bool add_files(const EditedProject& edited, const Vector<NamedFile>& files,
                             std::string_view library);
/// The entries of these names, or of paths from the current directory: ascending, none twice.
[[nodiscard]] bool find_all(const EditedProject& edited, std::span<const char* const> names,
                            Vector<std::size_t>& indexes);
/// The entry of such a name, or none when it is empty, becomes the top design.
[[nodiscard]] bool set_top(const EditedProject& edited, std::string_view name);
/// Carries out "KEY=VALUE" on the project or, if there are any, on these entries.
[[nodiscard]] bool change(const EditedProject& edited, const Vector<std::size_t>& sources,
                          const String& word);

} // namespace pellux
