#include "windows/toolkit/qt/windows/free_place.h"

#include "core/common/containers.h"

#include <algorithm>
#include <optional>

namespace pellux {
namespace {

constexpr int k_cascade_px = 28;

bool is_large_enough(QSize size, QSize wanted) {
    return size.width() >= wanted.width() * 2 / 3 && size.height() >= wanted.height() * 2 / 3;
}

bool hides_nothing(const QRect& place, std::span<const QRect> frames) {
    return std::ranges::none_of(frames,
                                [&place](const QRect& frame) { return frame.intersects(place); });
}

/// Below or beside the others; the largest place that there is, the topmost of these.
std::optional<QRect> place_beside(QSize area, std::span<const QRect> frames, QSize wanted) {
    Vector<int> lefts{0};
    Vector<int> tops{0};
    for (const QRect& frame : frames) {
        lefts.push_back(std::max(0, frame.x() + frame.width()));
        tops.push_back(std::max(0, frame.y() + frame.height()));
    }
    std::ranges::sort(lefts);
    std::ranges::sort(tops);
    const auto pixels = [](QSize size) {
        return static_cast<std::int64_t>(size.width()) * size.height();
    };
    std::optional<QRect> best;
    for (const int top : tops) {
        for (const int left : lefts) {
            const QRect place(QPoint(left, top), wanted.boundedTo(area - QSize(left, top)));
            const bool is_better = !best || pixels(place.size()) > pixels(best->size());
            if (is_large_enough(place.size(), wanted) && is_better && hides_nothing(place, frames))
                best = place;
        }
    }
    return best;
}

} // namespace

QRect free_place(QSize area, std::span<const QRect> frames, QSize wanted) {
    const QSize size = wanted.boundedTo(area);
    if (const auto place = place_beside(area, frames, size))
        return *place;
    for (QPoint corner(0, 0);; corner += QPoint(k_cascade_px, k_cascade_px)) {
        const QRect place(corner, size.boundedTo(area - QSize(corner.x(), corner.y())));
        if (!is_large_enough(place.size(), size))
            return {QPoint(0, 0), size};
        if (std::ranges::none_of(
                frames, [corner](const QRect& frame) { return frame.topLeft() == corner; }))
            return place;
    }
}

} // namespace pellux
