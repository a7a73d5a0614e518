#pragma once

#include "core/common/containers.h"

#include <cstdint>
#include <string_view>

namespace pellux {

/// A font by name: a family, style bits and a size in points. A value; family names are kept for
/// the program's life.
struct Font {
    std::uint16_t family = 0; ///< number of its name
    std::uint16_t style = 0;  ///< `FontStyle` bits
    std::int16_t size = 0;    ///< points

    bool operator==(const Font&) const = default;
};

enum class FontStyle : std::uint16_t { plain = 0, bold = 1, italic = 2, underline = 4 };

/// The desktop's font for controls.
[[nodiscard]] Font xvt_font_get_default();
/// The font for program text.
[[nodiscard]] Font xvt_font_get_fixed();

/// A family that the system has not stands for the one that it takes instead. "helvetica", "times"
/// and "courier" in any case stand for the desktop's own kinds.
void xvt_font_set_family(Font& font, std::string_view name);
[[nodiscard]] String xvt_font_get_family(Font font);
void xvt_font_set_style(Font& font, std::uint16_t style);
void xvt_font_set_size(Font& font, int points); ///< at least 1, at most 400

} // namespace pellux
