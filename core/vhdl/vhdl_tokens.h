#pragma once

#include "core/common/containers.h"

#include <string_view>

namespace pellux {

/// Identifiers, numbers and delimiters of a VHDL text in their order; comments, string and
/// character literals are left out. Basic identifiers and reserved words come folded to lower case,
/// a delimiter is one character.
[[nodiscard]] Vector<String> vhdl_tokens(std::string_view source);

} // namespace pellux
