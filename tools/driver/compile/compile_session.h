#pragma once

#include "core/common/containers.h"
#include "tools/driver/compile/plan.h"
#include "tools/driver/compile/recompile.h"
#include "tools/driver/libraries/bde_file.h"
#include "tools/driver/libraries/compiled_library.h"
#include "tools/driver/libraries/library_lock.h"
#include "tools/driver/libraries/library_records.h"
#include "tools/driver/libraries/run_directory.h"

#include <cstddef>

namespace pellux {

/// A source of the plan, in a run.
struct SessionSource {
    enum class State {
        waiting,
        up_to_date,
        compiled,
        failed,
    };
    String name;             ///< as the argument vector has it
    String file;             ///< its base name, by which the library knows it
    std::size_t library = 0; ///< number of its target
    State state = State::waiting;

    // Known once it is read.
    Failure unread;   ///< why it could not be read
    String ghdl_name; ///< what GHDL is given: the file or a copy of it
    String text;      ///< what GHDL reads; gone once the source is done
    Digest content{};
    SourceScan scan;               ///< compact
    Vector<DeclaredUnit> declared; ///< units that it seems to declare; of one that is compiled

    GhdlSource before;       ///< what the library held of it at the start; without units: nothing
    GhdlSource entry;        ///< what it holds now
    bool has_record = false; ///< of an earlier success, as far as it was asked for
    SourceRecord old_record;
    String doubt;        ///< why there is no `old_record` though there is a ".bde", to be told
    SourceRecord record; ///< of this run, once it has succeeded
    bool record_differs = false; ///< from what its ".bde" holds
};

/// A library that is written.
struct SessionTarget {
    CompiledLibrary library;
    LibraryRecords records;
    Vector<GhdlSource> foreign; ///< sources that are none of the plan's
    Vector<String> gone;        ///< base names of such sources that nobody finds any more
    LibraryLock lock;
};

/// A source that the libraries hold and the plan does not.
struct ForeignSource {
    GhdlSource* source = nullptr; ///< null: the libraries themselves
    String path;                  ///< absolute
    bool checked = false;
    bool changed = false; ///< since it was compiled
};

/// The libraries of one run. GHDL works on copies in a directory of the run's own, which always
/// hold what a compilation of all sources in their order would have made up to that point; the
/// libraries themselves change only in `commit_session`. Opened, led through its sources in their
/// order, and committed by the modules that include this.
struct CompileSession {
    const Plan* plan = nullptr;
    bool only_changed = false;
    String current; ///< directory
    Digest settings{};
    Vector<SessionTarget> targets; ///< as in the plan
    Vector<CompiledLibrary> others;
    Vector<SessionSource> sources; ///< in the order of their analysis
    Vector<ForeignSource> foreign;
    VisibleUnits visible;       ///< the plan's sources by their number, then the foreign ones
    Vector<String> time_stamps; ///< by the same numbers
    RunDirectory run;
    Vector<String> search;   ///< directories of the libraries that need no copy
    SourceScan scratch;      ///< of the source that was read last
    bool exposed = false;    ///< the copies are what the next source must see
    Vector<String> warnings; ///< about what was found, to be told
};

} // namespace pellux
