#pragma once

#include "core/common/containers.h"
#include "tools/driver/ghdl_library.h"

#include <string_view>

namespace pellux {

/// Those of `units` that nothing else in `source`, the file's text, instantiates or configures.
/// A component counts as a use of the entity of its name, which GHDL binds it to.
[[nodiscard]] Vector<String> unused_units(const Vector<String>& units, std::string_view source);

/// The entities and configurations of a source that nothing else in it uses; `text` is the
/// source's.
[[nodiscard]] Vector<String> elaborated_units(const GhdlSource& source, std::string_view text);

} // namespace pellux
