#pragma once

#include "windows/toolkit/event.h"

#include <QPointF>

class QKeyEvent;

namespace pellux {

/// The Menu key or Shift+F10.
[[nodiscard]] bool asks_for_menu(const QKeyEvent& event);
/// Asks a window, and as long as nobody has one those around it, for a menu. `place` lies in the
/// window's widget, logical pixels; `control` is the id of what is there.
void ask_for_menu(Window window, QPointF place, int control);

} // namespace pellux
