#pragma once

#include "core/text/text_document.h"

namespace pellux {

// Columns as they are seen in a font whose characters are of one width: a tab goes on to the next
// multiple of the tab width. From 0.

[[nodiscard]] std::int64_t display_column(const TextDocument& document, ByteOffset offset,
                                          int tab_width);
/// The offset in a line that stands in a column, or before it when a tab goes over it; the end of
/// the line when that is shorter.
[[nodiscard]] ByteOffset offset_at_column(const TextDocument& document, std::int64_t line,
                                          std::int64_t column, int tab_width);

} // namespace pellux
