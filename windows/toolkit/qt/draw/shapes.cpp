#include "windows/toolkit/qt/draw/shapes.h"

#include "windows/toolkit/qt/draw/ink_painter.h"

#include <QPainterPath>

#include <algorithm>

namespace pellux {
namespace {

/// Cuts a line to `box`; false when none of it lies inside.
bool cut_line(QPointF& from, QPointF& to, const QRectF& box) {
    const QPointF way = to - from;
    double start = 0;
    double end = 1;
    const auto cut = [&](double speed, double room_before, double room_behind) {
        if (speed == 0)
            return room_before <= 0 && room_behind >= 0;
        const auto [in, out] = std::minmax({room_before / speed, room_behind / speed});
        start = std::max(start, in);
        end = std::min(end, out);
        return start <= end;
    };
    if (!cut(way.x(), box.left() - from.x(), box.right() - from.x()) ||
        !cut(way.y(), box.top() - from.y(), box.bottom() - from.y()))
        return false;
    to = from + end * way;
    from += start * way;
    return true;
}

QPen painter_pen(const InkPainter& ink_painter, const DevicePen& pen) {
    QPen shown(ink_painter.color());
    shown.setWidth(pen.width);
    if (pen.style == PenStyle::dotted) {
        shown.setCapStyle(Qt::FlatCap);
        shown.setDashPattern({1, 1});
    } else {
        shown.setCapStyle(Qt::SquareCap);
    }
    shown.setJoinStyle(Qt::MiterJoin);
    return shown;
}

QPainterPath round_path(const QRectF& rect, double radius) {
    QPainterPath path;
    path.addRoundedRect(rect, radius, radius);
    return path;
}

} // namespace

void fill_box(Surface& surface, const Rect& box, Ink ink) {
    for_each_clip(surface, box, [&](const Rect& piece) {
        put_box(raster_of(surface), piece, ink);
        show_box(surface, piece);
    });
}

void put_line(Surface& surface, const Rect& box, bool is_upright, const DevicePen& pen) {
    if (pen.style == PenStyle::none)
        return;
    if (pen.style == PenStyle::solid) {
        fill_box(surface, box, pen.ink);
        return;
    }
    const int start = is_upright ? box.top : box.left;
    const int period = 2 * pen.width;
    for_each_clip(surface, box, [&](const Rect& piece) {
        const int end = is_upright ? piece.bottom : piece.right;
        int dot = is_upright ? piece.top : piece.left;
        dot -= (dot - start) % period;
        for (; dot < end; dot += period) {
            Rect part = piece;
            (is_upright ? part.top : part.left) = dot;
            (is_upright ? part.bottom : part.right) = dot + pen.width;
            put_box(raster_of(surface), common_part(part, piece), pen.ink);
        }
        show_box(surface, piece);
    });
}

void put_slanted_line(Surface& surface, QPointF from, QPointF to, const DevicePen& pen) {
    const double margin = 2.0 * pen.width + 2;
    const QRectF seen = QRectF(surface.image.rect()).adjusted(-margin, -margin, margin, margin);
    if (pen.style == PenStyle::none || !cut_line(from, to, seen))
        return;
    const Rect bounds = box_of(
        QRectF(from, to).normalized().adjusted(-margin, -margin, margin, margin).toAlignedRect());
    InkPainter ink_painter(surface, bounds, pen.ink);
    if (QPainter* painter = ink_painter.painter()) {
        painter->setPen(painter_pen(ink_painter, pen));
        painter->drawLine(from, to);
    }
}

void put_rect(Surface& surface, const Rect& box, const DevicePen& pen, const Ink* fill) {
    const int edge = pen.style == PenStyle::none ? 0 : pen.width;
    const bool is_all_edge = 2 * edge >= std::min(width(box), height(box));
    if (is_all_edge) {
        fill_box(surface, box, pen.ink);
        return;
    }
    const Rect inner{box.top + edge, box.left + edge, box.bottom - edge, box.right - edge};
    if (fill != nullptr)
        fill_box(surface, inner, *fill);
    if (edge == 0)
        return;
    put_line(surface, {box.top, box.left, inner.top, box.right}, false, pen);
    put_line(surface, {inner.bottom, box.left, box.bottom, box.right}, false, pen);
    put_line(surface, {inner.top, box.left, inner.bottom, inner.left}, true, pen);
    put_line(surface, {inner.top, inner.right, inner.bottom, box.right}, true, pen);
}

void put_round_rect(Surface& surface, const Rect& box, int radius, const DevicePen& pen,
                    const Ink* fill) {
    // Farther out, where a corner or edge lies can't be seen.
    constexpr int k_radius_max = 4096;
    constexpr int k_far = 3 * k_radius_max;
    const Rect image = box_of(surface.image.rect());
    const Rect near = common_part(box, {-k_far, -k_far, image.bottom + k_far, image.right + k_far});
    if (is_empty(near))
        return;
    const double edge = pen.style == PenStyle::none ? 0 : pen.width;
    const double round = std::min(radius, k_radius_max);
    const QRectF whole(qrect_of(near));
    const QPainterPath middle = round_path(whole.adjusted(edge / 2, edge / 2, -edge / 2, -edge / 2),
                                           std::max(0.0, round - edge / 2));
    if (fill != nullptr) {
        InkPainter ink_painter(surface, near, *fill);
        if (QPainter* painter = ink_painter.painter())
            painter->fillPath(middle, ink_painter.color());
    }
    if (edge != 0) {
        InkPainter ink_painter(surface, near, pen.ink);
        if (QPainter* painter = ink_painter.painter())
            painter->strokePath(middle, painter_pen(ink_painter, pen));
    }
}

} // namespace pellux
