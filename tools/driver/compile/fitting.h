#pragma once

#include "tools/driver/compile/options.h"

namespace pellux {

/// What a design is to be fitted into, and how. Nothing is fitted yet: it is told in the report.
struct Fitting {
    String device; ///< empty: none is named
    String package;
    Vector<String> switches;
    // What came from directives of the top design.
    bool device_by_directive = false;
    bool package_by_directive = false;
    Vector<String> switches_by_directive;
};

/// The arguments' word, and what directives of the top design's source say where the arguments say
/// nothing about it.
[[nodiscard]] Fitting find_fitting(const Options& options);

} // namespace pellux
