#pragma once

#include "tools/driver/compile/compile_session.h"
#include "tools/driver/compile/options.h"

#include <cstdint>
#include <string_view>

namespace pellux {

// The report TOP.rpt of a run with a top design, in the current directory: how it was called, what
// became of each source and why, every message with its notes, and the units that the libraries
// hold at the end. It goes along with the run, so that one that is stopped leaves what was known.

struct RunReport {
    bool is_open = false;
    std::int64_t started_ms = 0;
};

/// Begins the report unless its file is one of the plan's sources, or no file. `ghdl_version` is
/// GHDL's own word.
void begin_report(RunReport& report, const Options& options, const Plan& plan,
                  std::string_view ghdl_version);
/// Tells what becomes of a source. `recompiles_all`: for no other reason than that.
void report_source(const RunReport& report, const SessionSource& source, std::string_view library,
                   const SourceDecision& decision, bool recompiles_all);
void end_report(RunReport& report, const CompileSession& session);

} // namespace pellux
