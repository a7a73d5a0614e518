#pragma once

#include "tools/driver/compile/compile_session.h"
#include "tools/driver/ghdl/translator.h"

#include <span>

namespace pellux {

// A source that is up to date has the warnings of its last compilation all the same: they are kept
// in its record, and told whenever a run finds nothing to do for it.

/// Adds `diagnostic`, if it is a warning that may be told again, to those of the source's record. A
/// place in the source itself is kept without its name, which may be another one the next time.
void keep_warning(Vector<RecordedWarning>& warnings, const SessionSource& source,
                  const Diagnostic& diagnostic);

/// Tells them of the current source.
void tell_kept_warnings(std::span<const RecordedWarning> warnings);

} // namespace pellux
