#pragma once

#include "windows/toolkit/qt/windows/window_table.h"

#include <QPointF>

namespace pellux {

/// A place in the window's widget, logical pixels, as one in the window's units, and back.
[[nodiscard]] Point to_units(const WindowRecord& record, QPointF place);
[[nodiscard]] QPointF to_widget(const WindowRecord& record, Point at);
/// The id of the control or pane at a place in the window's widget, 0 for none.
[[nodiscard]] int control_at(const WindowRecord& record, QPointF place);

} // namespace pellux
