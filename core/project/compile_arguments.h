#pragma once

#include "core/os/path.h"
#include "core/project/records.h"

#include <span>

namespace pellux {

inline constexpr const char* k_compiler_program = "BRIX.EXE";

/// One row of the project's file list, as the user sees it.
struct CompileEntry {
    const VHDL_source* source = nullptr; ///< null: the row's text cannot be had
    bool selected = false;
};

/// Where the compiler is; false after telling the user that it cannot be found.
[[nodiscard]] bool find_compiler(PathBuffer& path);

/// Does the project hold exactly one file, and is that a PLA file?
[[nodiscard]] bool is_pla_project(const Project& project);

/// A source's name as a word that no program takes for a switch or a response file: "./-x.vhd".
[[nodiscard]] String source_argument(std::string_view name);

/// The arguments for all of the project, if these were its options.
[[nodiscard]] Vector<String> option_arguments(const Project& project,
                                              const Source_options& options);

/// The compiler's arguments, element 0 apart, for all entries or the selected ones. The top design
/// comes last, after "-b".
[[nodiscard]] Vector<String> build_arguments(const Project& project,
                                             std::span<const CompileEntry> entries, bool all);

/// Every step between the user's wish to compile and the start of the compiler: finds it, carries
/// out a rebuild request (clears it and deletes the intermediate files) and builds the whole
/// vector, element 0 included. The current directory is the project's. False after telling the user
/// why nothing is to be started.
[[nodiscard]] bool prepare_compile(Project& project, std::span<const CompileEntry> entries,
                                   bool all, Vector<String>& vector);

} // namespace pellux
