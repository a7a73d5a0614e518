#pragma once

#include "windows/toolkit/text_access.h"

class QAccessibleEvent;
class QAccessibleInterface;
class QWidget;

namespace pellux {

/// What a pane with a text is to assistive technology; Qt owns it.
[[nodiscard]] QAccessibleInterface* make_text_access(QWidget& pane);
/// Hands the event for a change to `tell`; a first change of the text makes none.
void tell_text_change(Window pane, TextAccessChange what, void (*tell)(QAccessibleEvent* event));

} // namespace pellux
