#pragma once

#include "windows/toolkit/qt/windows/window_table.h"

class QWheelEvent;

namespace pellux {

/// Over the window's widget; goes nowhere at the start and the end of a touchpad's movement.
[[nodiscard]] WheelEvent wheel_event(const WindowRecord& record, const QWheelEvent& event);

} // namespace pellux
