#pragma once

#include "windows/toolkit/draw.h"
#include "windows/toolkit/qt/draw/raster.h"

#include <QImage>
#include <QPainter>
#include <QRegion>

#include <optional>

class QPaintEvent;
class QWidget;

namespace pellux {

/// What a window draws with.
struct DrawContext {
    DrawMode mode = DrawMode::copy;
    Pen pen;
    Brush brush;
    Color fore = Color::black;
    Color back = Color::white;
    TextEncoding encoding = TextEncoding::utf_8;
    std::optional<Rect> clip;
    Font font;
};

/// A window's image, in device pixels whatever the window's units are.
///
/// Drawing keeps a painter open on it, which is ended before the pixels are used as a whole. What
/// was asked for by `pending` is told to the window as one update event before it is painted.
struct Surface {
    Window window = Window::none;
    /// Has the window draw `rect`, in its units; false when it did not live through that.
    bool (*update)(Window window, const Rect& rect) = nullptr;
    QWidget* widget = nullptr; ///< shows the image; owns the surface through its record
    PixelUnits units = PixelUnits::device;
    QImage store;      ///< rows among which the image slides when it is scrolled
    QImage image;      ///< a part of `store`
    int first_row = 0; ///< of the image in `store`
    double ratio = 1;
    double point = 0; ///< device pixels; 0 until the image was fitted
    DrawContext context;
    QRegion pending;                 ///< device pixels
    bool is_updating = false;        ///< inside an update event
    QRegion updating;                ///< all that an update event's drawing reaches
    Rect announced;                  ///< the widget knows that this part changed; device pixels
    bool is_painting = false;        ///< the widget is about to show its image
    Rect changed;                    ///< while painting: what was drawn
    std::optional<QPainter> painter; ///< open while a burst of drawing lasts

    Surface() = default;
    Surface(const Surface&) = delete;
    Surface& operator=(const Surface&) = delete;
};

/// Fits the image to the widget's size and pixel ratio; keeps what was drawn, and asks for what is
/// new (all of it when the ratio changed).
void fit_surface(Surface& surface);
/// Asks for everything again: the theme changed.
void renew_surface(Surface& surface);
/// Tells the window what is pending, then shows the image in the widget.
void paint_surface(Surface& surface, const QPaintEvent& event);

/// A place in the widget, logical pixels, as one in the window's units.
[[nodiscard]] Point to_units(const Surface& surface, QPointF place);

// For drawing. Boxes are rectangles of device pixels, far from the ends of their type.

/// Device pixels for one of the window's units.
[[nodiscard]] double unit_scale(const Surface& surface);
/// A coordinate in the window's units as the nearest edge of a device pixel.
[[nodiscard]] int to_device(const Surface& surface, double coordinate);
[[nodiscard]] Rect to_device(const Surface& surface, const Rect& rect);
/// The image's pixels; an image that could not be had has none. The painter may stay open.
[[nodiscard]] Raster raster_of(Surface& surface);
/// The part of `box` that the image and the window's clip leave; an update event may leave less.
[[nodiscard]] Rect clipped(const Surface& surface, const Rect& box);
/// The open painter, drawing nowhere outside `clip` and what an update event leaves of it.
[[nodiscard]] QPainter& open_painter(Surface& surface, const Rect& clip);
void close_painter(Surface& surface);
/// What lies in `box` changed.
void show_box(Surface& surface, const Rect& box);
/// Moves the pixels of `box`, a part of the image, and what is pending in it. What is uncovered has
/// any pixels of before.
void scroll_box(Surface& surface, const Rect& box, int right, int down);
/// Makes `box` pending.
void ask_for_box(Surface& surface, const Rect& box);
/// Delivers the update event that is due. False when the window did not live through it.
bool tell_pending(Surface& surface);

[[nodiscard]] inline QRect qrect_of(const Rect& box) {
    return {box.left, box.top, width(box), height(box)};
}
[[nodiscard]] inline Rect box_of(const QRect& rect) {
    return {rect.y(), rect.x(), rect.y() + rect.height(), rect.x() + rect.width()};
}

/// Calls `draw` with each part of `box` that may be drawn on.
template <typename Draw>
void for_each_clip(Surface& surface, const Rect& box, Draw draw) {
    const Rect part = clipped(surface, box);
    if (is_empty(part))
        return;
    if (!surface.is_updating) {
        draw(part);
        return;
    }
    for (const QRect& rect : surface.updating) {
        const Rect piece = common_part(part, box_of(rect));
        if (!is_empty(piece))
            draw(piece);
    }
}

} // namespace pellux
