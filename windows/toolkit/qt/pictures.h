#pragma once

#include "windows/toolkit/draw.h"

#include <QIcon>
#include <QPixmap>

namespace pellux {

/// A numbered picture in a square of `device_px` (at most 1024), pixel by pixel; null when there is
/// no such picture, which is told once as an error of the program.
[[nodiscard]] QPixmap picture(int number, int device_px, ImageLook look);
/// The same for all looks of a button, a menu item or an entry, sharp on a screen with that many
/// device pixels for a logical one; empty when there is no such picture.
[[nodiscard]] QIcon picture_icon(int number, int logical_px, double ratio);
/// The desktop's colours changed.
void forget_pictures();

} // namespace pellux
