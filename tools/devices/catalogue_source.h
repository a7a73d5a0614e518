#pragma once

#include "core/common/containers.h"

#include <string_view>

namespace pellux {

/// Makes the bytes of a "devices.dat" from its source (docs/formats.md), the text of `source_name`.
/// False after it has told the user of sections that stand twice, lines that are too long, a
/// "begin" or "end" without its partner, and blocks that a reader would not find by their names.
[[nodiscard]] bool build_catalogue(std::string_view source, const char* source_name, String& file);

} // namespace pellux
