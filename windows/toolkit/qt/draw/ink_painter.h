#pragma once

#include "windows/toolkit/qt/draw/surface.h"

namespace pellux {

/// A painter for what only Qt can draw, on one part of a surface, in one ink.
///
/// Copying, it is the surface's own. Inverting, the shape is painted on a picture of its own first,
/// and every pixel of which it covers at least half is inverted when this object goes.
class InkPainter {
public:
    /// `bounds` is all that will be drawn on, in device pixels.
    InkPainter(Surface& surface, const Rect& bounds, Ink ink);
    InkPainter(const InkPainter&) = delete;
    InkPainter& operator=(const InkPainter&) = delete;
    ~InkPainter();

    /// Null when there is nothing to draw on. Its coordinates are the surface's.
    [[nodiscard]] QPainter* painter() { return painter_; }
    [[nodiscard]] QColor color() const { return color_; }

private:
    Surface& surface_;
    Rect part_;
    Ink ink_;
    QColor color_;
    QPainter* painter_ = nullptr;
    QImage shape_;
    std::optional<QPainter> shape_painter_;
};

} // namespace pellux
