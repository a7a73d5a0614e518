#pragma once

#include "tools/driver/compile/compile_session.h"

#include <cstddef>
#include <optional>
#include <string_view>

namespace pellux {

/// Name of the library that the source is compiled into.
[[nodiscard]] std::string_view library_of(const CompileSession& session, std::size_t source);
/// Reads a source and its record; `unread` tells of a failure.
void read_source(CompileSession& session, std::size_t source);
/// Tells whether a source that was read must be compiled, with what is visible now.
[[nodiscard]] SourceDecision decide_source(CompileSession& session, std::size_t source);
/// The source before it, or the foreign one, that has the unit by now; none: it is nobody else's.
[[nodiscard]] std::optional<std::size_t> other_owner(const CompileSession& session,
                                                     std::size_t source, const GhdlUnit& unit);
/// What the library holds of the source is what an analysis would make.
void take_up_to_date(CompileSession& session, std::size_t source);

/// Puts in the run's directory what the source may see; the last one sees all.
[[nodiscard]] Failure expose_libraries(CompileSession& session);

/// Reads what GHDL has written into the copy of a library, after an analysis that it calls a
/// success.
[[nodiscard]] Failure read_made(const CompileSession& session, std::size_t target,
                                CompiledLibrary& made);
/// Takes what GHDL has made of the source; its entry of `made` is moved away.
[[nodiscard]] Failure take_compiled(CompileSession& session, std::size_t source,
                                    CompiledLibrary& made);
void take_failed(CompileSession& session, std::size_t source);

/// What an elaboration of the source's units depends on.
[[nodiscard]] Digest elaboration_digest(const CompileSession& session, std::size_t source);
/// Records that the units were elaborated with success and with the warnings in the record.
void take_elaborated(CompileSession& session, std::size_t source);

} // namespace pellux
