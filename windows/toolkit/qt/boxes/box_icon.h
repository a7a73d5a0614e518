#pragma once

#include "windows/toolkit/ask.h"

#include <QPixmap>

namespace pellux {

/// The sign of a question, note, warning or error, readable on a light and on a dark ground.
/// `side` counts logical pixels.
[[nodiscard]] QPixmap box_icon(QuestionKind kind, int side, double ratio);

} // namespace pellux
