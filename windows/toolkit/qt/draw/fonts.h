#pragma once

#include "windows/toolkit/font.h"
#include "windows/toolkit/qt/draw/raster.h"

#include <QFont>
#include <QFontMetrics>

#include <array>
#include <cstdint>

namespace pellux {

/// A character's picture; `left` and `top` count from the pen on the base line.
struct Glyph {
    bool is_made = false;
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
    std::size_t coverage = 0; ///< where its mask begins in `FontFace::coverage`
};

/// A font in the size of some screen, all in device pixels. Hinted in full, so that every character
/// goes on by whole pixels.
struct FontFace {
    explicit FontFace(const QFont& sized);

    QFont font;
    QFontMetrics metrics;
    std::array<int, 256>
        advances{};         ///< of the Latin-1 characters; a control character's is a blank's
    int common_advance = 0; ///< 0: they differ
    int reach = 0;          ///< ink lies less than this beside the way of the pen
    int underline_top = 0;  ///< below the base line
    int underline_height = 1;
    std::array<Glyph, 256> glyphs;
    Vector<std::uint8_t> coverage;
};

/// The face of a font where a point is `pixels` high; good until the next call. The underline is
/// not in it.
[[nodiscard]] FontFace& font_face(Font font, double pixels);
/// The same for a widget, which knows its screen.
[[nodiscard]] QFont widget_font(Font font);
/// The desktop's fonts changed.
void forget_fonts();

/// Picture of a Latin-1 character, made when it is first asked for.
[[nodiscard]] const Glyph& glyph_of(FontFace& face, unsigned char character);
[[nodiscard]] inline Mask mask_of(const FontFace& face, const Glyph& glyph) {
    return {face.coverage.data() + glyph.coverage, glyph.width, glyph.height};
}
[[nodiscard]] constexpr bool is_control(unsigned character) {
    return character < 32 || (character >= 127 && character < 160);
}

} // namespace pellux
