#pragma once

#include "core/vhdl/source_scan.h"
#include "tools/driver/compile/compile_session.h"
#include "tools/driver/ghdl/translator.h"

#include <cstddef>
#include <optional>

namespace pellux {

/// The units of the run's sources by their numbers, each source read when it is first asked for.
struct LaterUnits {
    Vector<std::optional<Vector<DeclaredUnit>>> of_source;
};

/// Where GHDL misses a unit while it analyses `source`, and a source behind that one in the list
/// declares it, the error gets a further line that names the file.
void add_declaring_source(LaterUnits& units, const CompileSession& session, std::size_t source,
                          Diagnostic& diagnostic);

} // namespace pellux
