#pragma once

#include "core/project/project_file.h"

#include <span>
#include <string_view>

namespace pellux {

inline constexpr int k_status_done = 0;
/// A wrong command line, or a file that cannot be read, understood or written.
inline constexpr int k_status_unusable = 2;
/// And the number of the signal that asked the program to end while the compiler ran.
inline constexpr int k_status_interrupted = 128;

// Each command answers the program's exit status, after telling the user what is wrong.

/// Prints the project file as JSON.
[[nodiscard]] int show_project(const char* file);
/// Makes the project file from JSON; the two must not be one.
[[nodiscard]] int make_project(const char* json_file, const char* file);
/// Makes a project file that is not there yet of the sources that `words` name, with the options
/// among them.
[[nodiscard]] int new_project_file(const char* file, std::span<const char* const> words);
/// Adds sources at the end of the list; those that it has stay as they are.
[[nodiscard]] int add_sources(const char* file, std::span<const char* const> words);
[[nodiscard]] int remove_named_sources(const char* file, std::span<const char* const> names);
/// "KEY=VALUE" for options of the project or, behind "--source NAME", of those sources, by their
/// names in JSON.
[[nodiscard]] int set_options(const char* file, std::span<const char* const> words);
/// Compiles the project file: all of its sources, or those named in `selected` when that is not
/// null. What the compiler says goes to standard output. The status is the compiler's once it runs,
/// but no success where the output could not be written.
[[nodiscard]] int compile_project_file(std::string_view file,
                                       const std::span<const char* const>* selected);

/// What a command that has succeeded so far answers after writing to standard output, whose `error`
/// it tells.
[[nodiscard]] int status_after_output(SystemError error);

/// Tells the user how the writing of a project file went; false when it failed.
[[nodiscard]] bool tell_write_result(const ProjectWriteResult& result, std::string_view path);

} // namespace pellux
