#pragma once

#include "core/common/containers.h"
#include "tools/driver/ghdl/ghdl_words.h"
#include "tools/driver/libraries/library_place.h"

#include <span>

namespace pellux {

struct FoundLibraries {
    struct Target {
        LibraryPlace place;
        bool is_installed = false; ///< only to be read
    };
    Vector<Target> targets;         ///< those that were asked for
    Vector<LibraryPlace> visible;   ///< those that hold units for the standard
    Vector<LibraryPlace> installed; ///< of the installation, whatever they hold
};

/// Finds the libraries of these names, and those that may be read besides: assigned in "brix.rc",
/// in the current directory, installed. The first place that has a library's name wins.
[[nodiscard]] Failure find_libraries(std::span<const String> names, VhdlStandard standard,
                                     FoundLibraries& found);

} // namespace pellux
