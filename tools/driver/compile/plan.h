#pragma once

#include "core/common/containers.h"
#include "tools/driver/compile/options.h"
#include "tools/driver/exit_status.h"

#include <cstddef>
#include <string_view>

namespace pellux {

/// A library and the directory, relative to the current one or absolute, that holds its files.
struct LibraryPlace {
    String name; ///< lower case
    String directory;

    bool operator==(const LibraryPlace&) const = default;
};

/// What the plan must know of the place where it is carried out.
struct Surroundings {
    struct Target {
        LibraryPlace place;
        bool is_installed = false; ///< only to be read
    };
    Vector<Target> targets;         ///< the libraries that the arguments name, as they were found
    Vector<LibraryPlace> visible;   ///< those that hold units for the standard
    Vector<LibraryPlace> installed; ///< of the installation, whatever they hold
};

enum class StepKind {
    nothing,
    analyse,
    elaborate, ///< every unit of the file that nothing else in it uses
};

struct Step {
    StepKind kind = StepKind::analyse;
    String file;             ///< as it stands in the argument vector
    std::size_t library = 0; ///< number of its target
};

/// All that a run will do, in order. With a `failure` nothing is done.
struct Plan {
    Failure failure;
    VhdlStandard standard = VhdlStandard::vhdl_2008;
    Vector<LibraryPlace> targets;   ///< libraries that are written, each once
    Vector<LibraryPlace> others;    ///< further ones that may be read
    Vector<LibraryPlace> installed; ///< ones that may be read once they fit GHDL
    Vector<Step> steps;
};

/// Looks at nothing but its arguments.
[[nodiscard]] Plan make_plan(const Options& options, const Surroundings& surroundings);

/// "alib-obj08.cf": the file that makes a directory the home of library `alib`.
[[nodiscard]] String library_file_name(std::string_view library, VhdlStandard standard);

/// "v08": where GHDL keeps what its own libraries hold for the standard.
[[nodiscard]] const char* standard_directory(VhdlStandard standard);

/// What all calls of GHDL share.
struct GhdlCalls {
    String program; ///< its name, the first word
    VhdlStandard standard = VhdlStandard::vhdl_2008;
    String directory;      ///< where it reads and writes the libraries of the run
    Vector<String> search; ///< directories of further libraries
};

// Words of the GHDL calls, its program name first. `file` is named as GHDL is given it.
[[nodiscard]] Vector<String> analysis_words(const GhdlCalls& calls, std::string_view library,
                                            std::string_view file);
[[nodiscard]] Vector<String> elaboration_words(const GhdlCalls& calls, std::string_view library,
                                               std::string_view unit);

/// The file's name as GHDL is given it, so that it is never taken for a switch.
[[nodiscard]] String ghdl_file_name(std::string_view file);

} // namespace pellux
