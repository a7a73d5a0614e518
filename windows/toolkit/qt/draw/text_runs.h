#pragma once

#include "windows/toolkit/qt/draw/fonts.h"
#include "windows/toolkit/qt/draw/surface.h"

#include <string_view>

namespace pellux {

/// A text on its base line, in device pixels.
struct TextRun {
    std::string_view text;
    TextEncoding encoding = TextEncoding::utf_8;
    Point at;
    bool is_underlined = false;
};

/// Device pixels from the start of `text` to its end, at most what an `int` holds.
[[nodiscard]] int text_width(FontFace& face, std::string_view text, TextEncoding encoding);
/// Draws as much of the text as can be seen.
void draw_text_run(Surface& surface, FontFace& face, const TextRun& run, Ink ink);

} // namespace pellux
