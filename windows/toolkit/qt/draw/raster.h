#pragma once

#include "windows/toolkit/geometry.h"

#include <cstddef>
#include <cstdint>

namespace pellux {

/// Pixels 0xffRRGGBB in rows, borrowed from an image. Boxes are rectangles in it.
struct Raster {
    std::uint32_t* pixels = nullptr;
    std::ptrdiff_t stride = 0; ///< pixels from one row to the next
    int width = 0;
    int height = 0;
};

/// What is put on pixels: a colour or, for exclusive-or, the bits in which they change.
struct Ink {
    std::uint32_t bits = 0;
    bool inverts = false;
};

/// How much of each pixel a shape covers, 0 to 255, by rows without gaps.
struct Mask {
    const std::uint8_t* coverage = nullptr;
    int width = 0;
    int height = 0;
};

[[nodiscard]] Rect common_part(const Rect& a, const Rect& b);
/// The smallest rectangle around both; an empty one counts for nothing.
[[nodiscard]] Rect around_both(const Rect& a, const Rect& b);

/// `box` lies inside the raster.
void put_box(const Raster& raster, const Rect& box, Ink ink);
/// Puts ink where the mask, its top left corner at `at`, covers pixels of `clip`, which lies inside
/// the raster. Inverting takes a pixel as a whole when at least half of it is covered.
void put_mask(const Raster& raster, const Rect& clip, Point at, const Mask& mask, Ink ink);
/// Moves the pixels of `box`, which lies inside the raster; what leaves it is lost, what is
/// uncovered stays as it was.
void move_box(const Raster& raster, const Rect& box, int right, int down);
/// Puts the columns of `count` rows in the place of others; both lie inside the raster.
void move_rows(const Raster& raster, int left, int right, int from, int to, int count);

} // namespace pellux
