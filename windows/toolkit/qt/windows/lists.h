#pragma once

#include "windows/toolkit/event.h"

class QWidget;

namespace pellux {

/// The widget of a list control, which tells of what happens to it.
[[nodiscard]] QWidget* make_list(Window control, bool takes_many);
/// Of a list that drops down.
[[nodiscard]] QWidget* make_combo(Window control, bool is_editable);

} // namespace pellux
