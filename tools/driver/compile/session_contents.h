#pragma once

#include "tools/driver/compile/compile_session.h"

namespace pellux {

enum class Moment {
    next_source, ///< what the next source must see
    end,         ///< sources that were not reached stay as they were
};

/// What the library of that number holds: others' sources, then the plan's in their order.
[[nodiscard]] GhdlLibrary contents(const CompileSession& session, std::size_t target,
                                   Moment moment);

/// Leaves out what GHDL could not read again in a library file in `directory`, absolute: it refuses
/// the whole of a library that names a source in such a way.
void drop_unreadable(GhdlLibrary& library, std::string_view directory);

/// Writes a library's contents into the run's directory.
[[nodiscard]] Failure write_copy(CompileSession& session, GhdlLibrary contents,
                                 const CompiledLibrary& library);

} // namespace pellux
