#pragma once

#include "windows/toolkit/qt/draw/surface.h"

namespace pellux {

struct DevicePen {
    int width = 1; ///< device pixels
    PenStyle style = PenStyle::solid;
    Ink ink;
};

void fill_box(Surface& surface, const Rect& box, Ink ink);
/// A level or upright line that fills `box`; its dots, as long as the pen is wide, begin where it
/// does.
void put_line(Surface& surface, const Rect& box, bool is_upright, const DevicePen& pen);
/// The ends are centres of pixels.
void put_slanted_line(Surface& surface, QPointF from, QPointF to, const DevicePen& pen);
/// The pen stays inside the box; `fill` may be null.
void put_rect(Surface& surface, const Rect& box, const DevicePen& pen, const Ink* fill);
void put_round_rect(Surface& surface, const Rect& box, int radius, const DevicePen& pen,
                    const Ink* fill);

} // namespace pellux
