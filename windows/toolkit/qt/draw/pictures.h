#pragma once

#include "windows/toolkit/draw.h"

#include <QIcon>
#include <QPixmap>

#include <span>

namespace pellux {

/// A numbered picture in a square of `device_px` (at most 1024), pixel by pixel; null when there is
/// no such picture, which is told once as an error of the program.
[[nodiscard]] QPixmap picture(int number, int device_px, ImageLook look);
/// The same as an icon with some looks, sharp on a screen with that many device pixels for a
/// logical one; empty when there is no such picture. Each look costs its rendering once.
[[nodiscard]] QIcon picture_icon(int number, int logical_px, double ratio,
                                 std::span<const ImageLook> looks);
/// The desktop's colours changed.
void forget_pictures();

} // namespace pellux
