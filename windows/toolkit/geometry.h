#pragma once

namespace pellux {

/// Pixels; `bottom` and `right` lie outside.
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
[[nodiscard]] constexpr bool contains(const Rect& outer, const Rect& inner) {
    return outer.top <= inner.top && outer.left <= inner.left && outer.bottom >= inner.bottom &&
           outer.right >= inner.right;
}
[[nodiscard]] constexpr bool meets(const Rect& a, const Rect& b) {
    return a.top < b.bottom && b.top < a.bottom && a.left < b.right && b.left < a.right;
}

} // namespace pellux
