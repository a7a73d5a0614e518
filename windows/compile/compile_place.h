#pragma once

#include "core/common/nullable_text.h"
#include "windows/toolkit/font.h"
#include "windows/toolkit/geometry.h"

#include <optional>
#include <string_view>

namespace pellux {

/// Where a project's compile window stood, and its font: what the project keeps of it.
struct CompilePlace {
    Rect rect; ///< in the task window
    std::optional<Font> font;
};

/// Reads "%d %d %d %d %d %d %s" (docs/formats.md); nothing for any other text, and no rectangle
/// where it is empty or further away than any screen.
[[nodiscard]] CompilePlace parse_compile_place(std::string_view text);
[[nodiscard]] String compile_place_text(const CompilePlace& place);

/// The lower third of an area, 100 units at least.
[[nodiscard]] Rect default_compile_rect(const Rect& area);

} // namespace pellux
