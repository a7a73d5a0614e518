#pragma once

#include <QString>

class QWidget;

namespace pellux {

/// The title of a control or, where it has one, the text that the user edits; for a list its name.
[[nodiscard]] QString control_text(const QWidget* control);
/// Tells nobody.
void set_control_text(QWidget* control, const QString& text);

} // namespace pellux
