#pragma once

#include <string_view>

namespace pellux {

/// Is `name` a VHDL identifier (not an extended one), and so fit to name a library and its
/// directory?
[[nodiscard]] bool is_library_name(std::string_view name);

/// Is it one of the libraries that GHDL brings itself and that nothing may be compiled into?
[[nodiscard]] bool is_reserved_library(std::string_view lower_case_name);

} // namespace pellux
