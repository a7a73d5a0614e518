#pragma once

#include "core/common/containers.h"

#include <string_view>

namespace pellux {

/// Those of `units` that nothing else in `source`, the file's text, instantiates or configures.
/// A component counts as a use of the entity of its name, which GHDL binds it to.
[[nodiscard]] Vector<String> unused_units(const Vector<String>& units, std::string_view source);

} // namespace pellux
