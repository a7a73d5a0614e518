#pragma once

#include "core/common/text_encoding.h"
#include "windows/toolkit/color.h"
#include "windows/toolkit/event.h"
#include "windows/toolkit/font.h"

#include <optional>
#include <string_view>

namespace pellux {

// Drawing on a window's image, at any time, in the window's units; the toolkit shows what changed.
// A window's image keeps what was drawn; where it grows or is uncovered anew an update event asks
// for it. A window that does not draw, or is gone, takes no notice.

enum class DrawMode {
    copy,
    /// Where the ink falls, paper and ink change places; a second time brings the first picture
    /// back exactly. Ink is the brush's or text's colour, paper the back colour.
    exclusive_or,
};
enum class PenStyle { none, solid, dotted };
struct Pen {
    Color color = Color::black;
    int width = 1; ///< of the window's units, at least one device pixel
    PenStyle style = PenStyle::solid;

    bool operator==(const Pen&) const = default;
};
struct Brush {
    Color color = Color::white;
    bool is_hollow = false;

    bool operator==(const Brush&) const = default;
};

void xvt_dwin_set_draw_mode(Window window, DrawMode mode);
void xvt_dwin_set_pen(Window window, const Pen& pen);
void xvt_dwin_set_brush(Window window, const Brush& brush);
void xvt_dwin_set_fore_color(Window window, Color color); ///< of text
/// What text and ink stand on, as far as contrast goes; white at first.
void xvt_dwin_set_back_color(Window window, Color color);
/// UTF-8 at first, where bytes that are none are shown as Latin-1.
void xvt_dwin_set_encoding(Window window, TextEncoding encoding);
/// Nothing is drawn outside `clip`; none lifts it.
void xvt_dwin_set_clip(Window window, const std::optional<Rect>& clip);

void xvt_dwin_set_font(Window window, Font font);
[[nodiscard]] Font xvt_dwin_get_font(Window window);
struct FontMetrics {
    int leading = 0;
    int ascent = 0;
    int descent = 0;
};
[[nodiscard]] FontMetrics xvt_dwin_get_font_metrics(Window window);
/// The way that the pen goes over `text`. In a Latin-1 text it is the sum over the characters, none
/// of which draws together with the next.
[[nodiscard]] int xvt_dwin_get_text_width(Window window, std::string_view text);

/// `baseline` is the y of the text's base line. A control character shows nothing but its width.
void xvt_dwin_draw_text(Window window, int x, int baseline, std::string_view text);
/// Both ends are drawn.
void xvt_dwin_draw_line(Window window, Point from, Point to);
/// Fills with the brush and outlines with the pen, all of it inside `rect`.
void xvt_dwin_draw_rect(Window window, const Rect& rect);
void xvt_dwin_draw_round_rect(Window window, const Rect& rect, int radius);
void xvt_dwin_clear(Window window, Color color);

enum class ImageLook {
    normal,
    disabled,
    selected, ///< all in the colour of selected text
};
/// Draws a picture in the largest square that fits into the middle of `rect`. False when there is
/// no such picture; it is read and rendered when it is first shown.
bool xvt_dwin_draw_image(Window window, int image, const Rect& rect, ImageLook look);

/// Moves the pixels inside `rect`; what is uncovered is to be drawn by the caller: the rectangles
/// left and right, and above or below, of what moved. Exact in device pixels; in logical ones at a
/// broken ratio the whole of `rect` is asked for by an update event instead.
void xvt_dwin_scroll_rect(Window window, const Rect& rect, int right, int down);
/// Asks for an update event, which comes before the window is shown next.
void xvt_dwin_invalidate_rect(Window window, const Rect& rect);
/// Delivers the update event that is due, now.
void xvt_dwin_update(Window window);

} // namespace pellux
