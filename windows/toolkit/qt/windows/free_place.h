#pragma once

#include <QRect>
#include <QSize>

#include <span>

namespace pellux {

/// Where a new frame of the size `wanted` goes in an area, as large as the area allows: where it
/// hides nothing, for which it may become smaller by a third; else a little below and beside those
/// that begin at the area's corner.
[[nodiscard]] QRect free_place(QSize area, std::span<const QRect> frames, QSize wanted);

} // namespace pellux
