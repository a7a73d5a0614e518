#pragma once

#include "core/common/containers.h"
#include "core/common/digest.h"
#include "core/os/process.h"
#include "tools/driver/compile/plan.h"
#include "tools/driver/libraries/library_lock.h"

#include <string_view>

namespace pellux {

/// How the analysis of installed libraries reaches GHDL and the user.
struct InstalledLibraryRun {
    Process& process; ///< for GHDL
    const char* ghdl = nullptr;
    Digest settings{}; ///< standard and GHDL
    WaitGuard guard;
    void (*tell)(void* context, std::string_view line) = nullptr; ///< with the guard's context
    Vector<String>& warnings;
};

/// Adds to what the plan may read the installed libraries: as they lie, where their GHDL files fit
/// the standard and the installed GHDL, or else, if the sources name the library, as an analysis of
/// our own in the user's cache directory, which is made when it is missing or out of date. Nothing
/// is written into the installation. A library that cannot be had is left out, with a warning.
void add_installed_libraries(Plan& plan, const InstalledLibraryRun& run);

} // namespace pellux
