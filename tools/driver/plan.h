#pragma once

#include "core/common/containers.h"
#include "tools/driver/exit_status.h"
#include "tools/driver/options.h"

#include <cstddef>
#include <string_view>

namespace pellux {

/// A library and the directory, relative to the current one, that holds its GHDL files.
struct LibraryPlace {
    String name; ///< lower case
    String directory;
};

/// What the plan must know of the current directory.
struct Surroundings {
    Vector<String> directories;     ///< names of its directories
    Vector<LibraryPlace> libraries; ///< those of them that hold a GHDL library of their name
};

enum class StepKind {
    analyse,
    elaborate, ///< every unit of the file that nothing else in it uses
};

struct Step {
    StepKind kind = StepKind::analyse;
    String file;             ///< as it stands in the argument vector
    std::size_t library = 0; ///< index into the plan's targets
};

/// All that a run will do, in order. With a `failure` nothing is done.
struct Plan {
    Failure failure;
    VhdlStandard standard = VhdlStandard::vhdl_2008;
    Vector<LibraryPlace> targets; ///< libraries that are written, each once
    Vector<LibraryPlace> others;  ///< further ones that may be read
    Vector<Step> steps;
};

/// Looks at nothing but its arguments.
[[nodiscard]] Plan make_plan(const Options& options, const Surroundings& surroundings);

/// "alib-obj08.cf": the file that makes a directory the home of library `alib`.
[[nodiscard]] String library_file_name(std::string_view library, VhdlStandard standard);

// Words of the GHDL calls, its program name first.
[[nodiscard]] Vector<String> analysis_words(std::string_view ghdl, const Plan& plan,
                                            const Step& step);
[[nodiscard]] Vector<String> listing_words(std::string_view ghdl, const Plan& plan,
                                           const Step& step);
[[nodiscard]] Vector<String> elaboration_words(std::string_view ghdl, const Plan& plan,
                                               const Step& step, std::string_view unit);

/// The file's name as GHDL is given it, so that it is never taken for a switch.
[[nodiscard]] String ghdl_file_name(std::string_view file);

} // namespace pellux
