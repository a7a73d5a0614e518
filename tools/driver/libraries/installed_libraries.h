#pragma once

#include "core/common/containers.h"
#include "core/os/process.h"
#include "tools/driver/ghdl/ghdl_words.h"
#include "tools/driver/libraries/library_lock.h"
#include "tools/driver/libraries/library_place.h"

#include <span>
#include <string_view>

namespace pellux {

/// How the analysis of installed libraries reaches GHDL and the user.
struct InstalledLibraryRun {
    Process& process; ///< for GHDL
    const char* ghdl = nullptr;
    VhdlStandard standard = VhdlStandard::vhdl_2008;
    WaitGuard guard;
    void (*tell)(void* context, std::string_view line) = nullptr; ///< with the guard's context
    Vector<String>& warnings;
};

/// Adds the installed libraries to those that may be read: as they lie, where their GHDL files fit
/// the standard and the installed GHDL, or else, if one of the source files names the library, as
/// an analysis of our own in the user's cache directory, which is made when it is missing or out of
/// date. Nothing is written into the installation. A library that cannot be had is left out, with a
/// warning.
void add_installed_libraries(Vector<LibraryPlace>& readable,
                             std::span<const LibraryPlace> installed,
                             std::span<const String> sources, const InstalledLibraryRun& run);

} // namespace pellux
