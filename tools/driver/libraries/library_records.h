#pragma once

#include "core/common/containers.h"
#include "core/diagnostics/message.h"
#include "core/library/library_index.h"
#include "tools/driver/exit_status.h"
#include "tools/driver/libraries/compiled_library.h"

namespace pellux {

/// The record file "index" of a library that is written, and how it stood when the run began.
struct LibraryRecords {
    enum class State {
        in_step, ///< with GHDL's library files
        behind,  ///< made or changed before they were; it is made anew
    };
    LibraryIndex index;
    State state = State::behind;
    Message<const char*>* doubt = nullptr; ///< why the file is made anew, of the library
    Vector<String> removed;                ///< sources that are in GHDL's library file only
};

/// Opens the records of a library that was read. When they are in step, what somebody removed from
/// them is removed from `library.sources` too.
[[nodiscard]] Failure open_records(LibraryRecords& records, CompiledLibrary& library,
                                   VhdlStandard standard);

/// Brings the records in step with `sources`, what GHDL's library file now holds: all of it in one
/// transaction.
[[nodiscard]] Failure commit_records(LibraryRecords& records, const CompiledLibrary& library,
                                     const Vector<GhdlSource>& sources, VhdlStandard standard);

} // namespace pellux
