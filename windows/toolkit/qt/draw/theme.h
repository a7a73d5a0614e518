#pragma once

#include "windows/toolkit/color.h"

#include <QColor>
#include <QPalette>

namespace pellux {

// How stored colours are shown under the desktop's palette.

/// Black as text is the palette's text, white as paper its base, light gray as paper its window
/// colour; another paper stays as it is. What a brush fills is paper.
[[nodiscard]] QColor shown_paper(Color paper);
/// Ink on a paper. Black on white, the palette's text on its base, is as the desktop has it, and so
/// is its highlighted text on its highlight; what else is not readable is made lighter or darker,
/// its hue kept, until its contrast is 4.5 (WCAG 2.1, contrast ratio).
[[nodiscard]] QColor shown_ink(Color ink, Color paper);
/// A pen's colour. The three grays are edges, that much of the palette's text mixed into the paper
/// (60, 40 and 20 of a hundred); white is the palette's light, as the lit side of an edge; all
/// others are inks.
[[nodiscard]] QColor shown_pen(Color pen, Color paper);

/// How far two colours lie apart: 1 to 21.
[[nodiscard]] double contrast_of(QRgb a, QRgb b);

/// Takes the palette that `PELLUX_THEME` ("dark" or "light") asks for, else the desktop's.
void apply_theme();

} // namespace pellux
