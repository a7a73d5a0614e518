#pragma once

#include "tools/driver/compile/analysis_batch.h"
#include "tools/driver/compile/compile_session.h"
#include "tools/driver/compile/later_units.h"
#include "tools/driver/compile/run_report.h"
#include "tools/driver/ghdl/ghdl_call.h"
#include "tools/driver/ghdl/translator.h"
#include "tools/driver/output.h"

#include <cstddef>
#include <optional>

namespace pellux {

/// What GHDL says in a call for many sources, until it is known to be theirs.
struct HeldMessages {
    Vector<Diagnostic> diagnostics;
    bool is_refused = false; ///< what it says shows that the call is of no use
};

struct Runner {
    Output& output;
    Plan plan;
    PathBuffer ghdl;
    GhdlCalls calls;
    CompileSession session;
    Process process;
    SourceNames names;
    Translator translator;
    RunReport report;
    AnalysisBatch batch; ///< of what is to be analysed next
    CallSize call_size;
    std::optional<HeldMessages> held; ///< while a call for many sources runs
    LaterUnits later_units;
    std::size_t read_count = 0;       ///< of sources
    std::size_t bytes_ahead = 0;      ///< of those that are read before it is their turn
    std::size_t source = k_no_source; ///< that is being analysed
    std::size_t top = k_no_source;    ///< that is being elaborated
    bool anything_done = false;
    Failure unrunnable; ///< GHDL can't be started at all

    static constexpr std::size_t k_no_source = static_cast<std::size_t>(-1);

    explicit Runner(Output& where) : output(where) {}
};

} // namespace pellux
