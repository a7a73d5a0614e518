#pragma once

#include "windows/toolkit/event.h"

#include <QVariant>

class QInputMethodEvent;
class QWidget;

namespace pellux {

/// Lets dead keys and input methods compose characters in a pane.
void enable_composition(QWidget& pane);
/// What an input method asks about a pane; an invalid value for what the pane need not know.
[[nodiscard]] QVariant answer_input_method(Window pane, Qt::InputMethodQuery query);

/// What an input method made: characters, each on to the windows around until one has a use for it.
void tell_typed(Window pane, const QString& text);
/// What it is at, a text that is not empty.
void tell_composed(Window pane, const QInputMethodEvent& event);

} // namespace pellux
