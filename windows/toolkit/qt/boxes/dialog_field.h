#pragma once

#include "windows/toolkit/ask.h"

#include <QString>

#include <functional>

class QButtonGroup;
class QLabel;
class QObject;
class QWidget;

namespace pellux {

/// A row of a dialog as it stands on the screen.
struct DialogField {
    int id = 0;
    DialogRowKind kind = DialogRowKind::text;
    int length_max = 0;
    QLabel* label = nullptr; ///< beside the widget, which has none itself
    QWidget* widget = nullptr;
    QLabel* note = nullptr; ///< behind the widget: a hint, or what is wrong
};

/// Is there a label beside the field of such a row, and something behind it?
[[nodiscard]] bool has_label(const DialogRow& row);
[[nodiscard]] bool has_note(const DialogRow& row);
/// What a screen reader says for a label.
[[nodiscard]] QString spoken_label(QString label);

/// Makes the field, empty. `group` is that of the radio rows that stand together.
[[nodiscard]] DialogField make_field(const DialogRow& row, QWidget* parent, QButtonGroup*& group);
/// Shows what the row holds; what the user has typed stays where it is the same.
void fill_field(const DialogField& field, const DialogRow& row);
/// Takes what the user made of it.
void read_field(const DialogField& field, DialogRow& row);
/// Puts the focus there; a text is selected.
void focus_field(const DialogField& field);

/// Calls when a field may have changed, also by `fill_field`.
void on_field_change(const DialogField& field, QObject* context, const std::function<void()>& call);

} // namespace pellux
