#pragma once

#include "core/common/containers.h"
#include "tools/driver/compile/options.h"
#include "tools/driver/libraries/local_libraries.h"

#include <cstddef>

namespace pellux {

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
    VhdlRules rules;
    Vector<LibraryPlace> targets;   ///< libraries that are written, each once
    Vector<LibraryPlace> others;    ///< further ones that may be read
    Vector<LibraryPlace> installed; ///< ones that may be read once they fit GHDL
    Vector<Step> steps;
};

/// Looks at nothing but its arguments; `found` are the libraries that the options name.
[[nodiscard]] Plan make_plan(const Options& options, const FoundLibraries& found);

} // namespace pellux
