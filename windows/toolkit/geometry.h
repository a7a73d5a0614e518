#pragma once

namespace pellux {

// All coordinates are 32 bits wide, x to the right and y down, in one of two units: logical pixels,
// which the desktop's scale makes larger, or device pixels, the screen's own.

enum class PixelUnits { logical, device };

struct Point {
    int x = 0;
    int y = 0;

    bool operator==(const Point&) const = default;
};

/// `bottom` and `right` lie outside.
struct Rect {
    int top = 0;
    int left = 0;
    int bottom = 0;
    int right = 0;

    bool operator==(const Rect&) const = default;
};

[[nodiscard]] constexpr int width(const Rect& rect) {
    return rect.right - rect.left;
}
[[nodiscard]] constexpr int height(const Rect& rect) {
    return rect.bottom - rect.top;
}
[[nodiscard]] constexpr bool is_empty(const Rect& rect) {
    return rect.right <= rect.left || rect.bottom <= rect.top;
}
[[nodiscard]] constexpr bool contains(const Rect& outer, const Rect& inner) {
    return outer.top <= inner.top && outer.left <= inner.left && outer.bottom >= inner.bottom &&
           outer.right >= inner.right;
}
[[nodiscard]] constexpr bool contains(const Rect& rect, Point point) {
    return rect.top <= point.y && point.y < rect.bottom && rect.left <= point.x &&
           point.x < rect.right;
}
[[nodiscard]] constexpr bool meets(const Rect& a, const Rect& b) {
    return a.top < b.bottom && b.top < a.bottom && a.left < b.right && b.left < a.right;
}

} // namespace pellux
