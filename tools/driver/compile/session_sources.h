#pragma once

#include "tools/driver/compile/compile_session.h"

#include <cstddef>

namespace pellux {

/// Reads a source and tells whether it must be compiled. One that is up to date is done with that.
/// A failure is about this source alone.
[[nodiscard]] Failure decide_source(CompileSession& session, std::size_t source,
                                    SourceDecision& decision);

/// Puts in the run's directory what the source may see; the last one sees all.
[[nodiscard]] Failure expose_libraries(CompileSession& session);

/// Takes what GHDL has made of the source after an analysis that it calls a success.
[[nodiscard]] Failure take_compiled(CompileSession& session, std::size_t source);
void take_failed(CompileSession& session, std::size_t source);

/// What an elaboration of the source's units depends on.
[[nodiscard]] Digest elaboration_digest(const CompileSession& session, std::size_t source);
/// Records that the units were elaborated with success.
void take_elaborated(CompileSession& session, std::size_t source, const Digest& digest);

} // namespace pellux
