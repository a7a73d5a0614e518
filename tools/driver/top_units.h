#pragma once

#include "core/common/containers.h"

#include <string_view>

namespace pellux {

/// The names of the entities and configurations in what `ghdl -f` prints of one file, in its order
/// and spelling.
[[nodiscard]] Vector<String> listed_units(std::string_view listing);

/// Those of `units` that nothing else in `source`, the file's text, instantiates or configures.
/// A component counts as a use of the entity of its name, which GHDL binds it to.
[[nodiscard]] Vector<String> unused_units(const Vector<String>& units, std::string_view source);

} // namespace pellux
