#pragma once

#include "windows/toolkit/ask.h"

#include <QPixmap>

namespace pellux {

/// Answers with boxes on the screen, as long as there is an application object.
[[nodiscard]] AskSeam qt_ask();

// The boxes of the questions.

/// A dialog stays on the screen until `close_dialog` with its number; one of number 0 goes with its
/// answer.
[[nodiscard]] Answer ask_dialog(const Question& question);
/// Changes one that stands, else opens a modeless one, at the upper right corner of the task window
/// or where it stood last.
void show_dialog(const Question& question, bool comes_forward);
void close_dialog(std::uint64_t dialog);

/// A prompt for a line of text.
[[nodiscard]] Answer ask_string(const Question& question);

/// Files are chosen by their names on the disk; a name that is no UTF-8 can't be, and is neither
/// offered nor answered as another one. The current directory stays what it is. A box for one file
/// takes names of files that don't exist, of which the caller has to tell; one for several tells of
/// them itself and answers the others.
[[nodiscard]] Answer ask_file(const Question& question);

/// Families of one width, which program text wants, are marked in the box.
[[nodiscard]] Answer ask_font(const Question& question);

/// The sign of a question, note, warning or error, readable on a light and on a dark ground.
/// `side` counts logical pixels.
[[nodiscard]] QPixmap box_icon(QuestionKind kind, int side, double ratio);

} // namespace pellux
