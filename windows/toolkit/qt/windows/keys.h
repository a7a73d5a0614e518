#pragma once

#include "windows/toolkit/event.h"

#include <Qt>

class QKeyEvent;
class QString;

namespace pellux {

[[nodiscard]] Modifiers modifiers(Qt::KeyboardModifiers held);

/// A key as character events: none for a modifier or a dead key alone, more than one where it types
/// several characters.
[[nodiscard]] Vector<CharacterEvent> character_events(const QKeyEvent& event);
/// The same of a text that comes without its keys.
[[nodiscard]] Vector<CharacterEvent> character_events(const QString& text);

} // namespace pellux
