#pragma once

#include "core/common/containers.h"

#include <cstddef>
#include <span>
#include <string_view>

namespace pellux {

/// Those of `units` that nothing else in `source`, the file's text, instantiates or configures.
/// A component counts as a use of the entity of its name, which GHDL binds it to.
[[nodiscard]] Vector<String> unused_units(const Vector<String>& units, std::string_view source);

/// The order in which texts that nobody has put in order may be analysed, by number: each after
/// those that declare what its identifiers name, as far as these do not name one another.
[[nodiscard]] Vector<std::size_t> analysis_order(std::span<const String> texts);

} // namespace pellux
