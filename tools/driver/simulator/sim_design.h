#pragma once

#include "core/common/containers.h"
#include "tools/driver/exit_status.h"
#include "tools/driver/ghdl/message_places.h"
#include "tools/driver/libraries/compiled_library.h"
#include "tools/driver/libraries/library_place.h"
#include "tools/driver/simulator/simulation_options.h"

namespace pellux {

/// What the command line's design comes to.
struct SimDesign {
    VhdlStandard standard = VhdlStandard::vhdl_2008;
    VhdlRules rules;                ///< the project's
    String unit;                    ///< named by somebody; empty: the top unit of `file`
    String file;                    ///< the top design
    String library{k_work_library}; ///< that the top design is compiled into
    SourceNames names;              ///< the project's spellings of its sources
};

/// Looks at the design's file, which is a project or a source, and for a source at the project in
/// the current directory whose top design it is. Changes into a project's directory. A project that
/// cannot be read tells so itself; the failure's text is empty then.
[[nodiscard]] Failure find_sim_design(const SimulationOptions& options, SimDesign& design);

/// The unit as the design's library has it, which `file` or `unit` of the design leads to.
[[nodiscard]] Failure find_sim_unit(const SimDesign& design, const CompiledLibrary& work,
                                    String& unit);

} // namespace pellux
