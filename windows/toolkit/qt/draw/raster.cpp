#include "windows/toolkit/qt/draw/raster.h"

#include <algorithm>
#include <cstring>

namespace pellux {
namespace {

std::uint32_t* row_of(const Raster& raster, int row) {
    return raster.pixels + raster.stride * row;
}

/// Two channels at a time; the differences may borrow from each other, which the sum gives back.
std::uint32_t mixed(std::uint32_t ground, std::uint32_t ink, std::uint32_t coverage) {
    const std::uint32_t part = coverage + (coverage >> 7);
    const std::uint32_t ground_rb = ground & 0xFF00FF;
    const std::uint32_t ground_g = ground & 0x00FF00;
    const std::uint32_t rb = ground_rb + (((ink & 0xFF00FF) - ground_rb) * part >> 8);
    const std::uint32_t g = ground_g + (((ink & 0x00FF00) - ground_g) * part >> 8);
    return 0xFF000000 | (rb & 0xFF00FF) | (g & 0x00FF00);
}

} // namespace

Rect common_part(const Rect& a, const Rect& b) {
    return {std::max(a.top, b.top), std::max(a.left, b.left), std::min(a.bottom, b.bottom),
            std::min(a.right, b.right)};
}

Rect around_both(const Rect& a, const Rect& b) {
    if (is_empty(a))
        return b;
    if (is_empty(b))
        return a;
    return {std::min(a.top, b.top), std::min(a.left, b.left), std::max(a.bottom, b.bottom),
            std::max(a.right, b.right)};
}

void put_box(const Raster& raster, const Rect& box, Ink ink) {
    if (is_empty(box))
        return;
    for (int y = box.top; y < box.bottom; ++y) {
        std::uint32_t* row = row_of(raster, y);
        if (!ink.inverts)
            std::fill(row + box.left, row + box.right, ink.bits);
        else
            std::for_each(row + box.left, row + box.right,
                          [&](std::uint32_t& pixel) { pixel ^= ink.bits; });
    }
}

void put_mask(const Raster& raster, const Rect& clip, Point at, const Mask& mask, Ink ink) {
    const Rect box = common_part(clip, {at.y, at.x, at.y + mask.height, at.x + mask.width});
    if (is_empty(box))
        return;
    for (int y = box.top; y < box.bottom; ++y) {
        const std::uint8_t* coverage = mask.coverage +
                                       static_cast<std::ptrdiff_t>(mask.width) * (y - at.y) +
                                       (box.left - at.x);
        std::uint32_t* pixel = row_of(raster, y) + box.left;
        std::uint32_t* const end = pixel + width(box);
        if (ink.inverts) {
            for (; pixel != end; ++pixel, ++coverage)
                *pixel ^= *coverage >= 128 ? ink.bits : 0;
            continue;
        }
        for (; pixel != end; ++pixel, ++coverage) {
            if (*coverage == 255)
                *pixel = ink.bits;
            else if (*coverage != 0)
                *pixel = mixed(*pixel, ink.bits, *coverage);
        }
    }
}

void move_box(const Raster& raster, const Rect& box, int right, int down) {
    const auto [top, left, bottom, end] = box;
    const Rect from = common_part(box, {top - down, left - right, bottom - down, end - right});
    if (is_empty(from))
        return;
    const int rows = height(from);
    const std::size_t bytes = static_cast<std::size_t>(width(from)) * sizeof(std::uint32_t);
    for (int i = 0; i < rows; ++i) {
        // No row is written before it is read.
        const int y = down > 0 ? from.bottom - 1 - i : from.top + i;
        std::memmove(row_of(raster, y + down) + from.left + right, row_of(raster, y) + from.left,
                     bytes);
    }
}

void move_rows(const Raster& raster, int left, int right, int from, int to, int count) {
    move_box(raster, {std::min(from, to), left, std::max(from, to) + count, right}, 0, to - from);
}

} // namespace pellux
