#pragma once

#include "core/common/containers.h"
#include "tools/driver/ghdl/message_places.h"
#include "tools/driver/libraries/compiled_library.h"
#include "tools/driver/libraries/installed_libraries.h"
#include "tools/driver/libraries/run_directory.h"

namespace pellux {

/// The libraries that a simulation reads, as they lie. Nothing in them is locked or changed: GHDL
/// gets copies of their library files.
struct SimLibraries {
    Vector<CompiledLibrary> libraries; ///< the design's own is the first
    RunDirectory run;                  ///< of the copies

    [[nodiscard]] const CompiledLibrary& work() const { return libraries.front(); }
};

/// Finds and reads them, the installed ones that are there for `run` too. The design's library
/// `name` is there, and maybe empty, after a success.
[[nodiscard]] Failure read_libraries(SimLibraries& libraries, const String& name,
                                     const InstalledLibraryRun& run);

/// Makes the copies, in the user's cache directory, or beside the design's library where GHDL would
/// find no source from there. They name every source by its absolute path, as GHDL's messages then
/// do too, unless it could not read that.
[[nodiscard]] Failure copy_libraries(SimLibraries& libraries, VhdlStandard standard);

/// How messages show the sources: as in `given`, else relative to the current directory where they
/// lie in it.
[[nodiscard]] SourceNames shown_sources(const SimLibraries& libraries, SourceNames& given);

} // namespace pellux
