#pragma once

#include "core/common/containers.h"

#include <cstddef>
#include <span>

namespace pellux {

/// The order in which texts that nobody has put in order may be analysed, by number: each after
/// those that declare what its identifiers name, as far as these do not name one another.
[[nodiscard]] Vector<std::size_t> analysis_order(std::span<const String> texts);

} // namespace pellux
