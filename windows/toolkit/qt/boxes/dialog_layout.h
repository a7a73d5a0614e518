#pragma once

#include "windows/toolkit/qt/boxes/dialog_field.h"

class QBoxLayout;
class QGridLayout;
class QHBoxLayout;
class QTabWidget;
class QVBoxLayout;

namespace pellux {

/// Places the fields of a dialog one after the other: labels, fields and what is said of them in
/// columns, on pages and in groups, of which some stand side by side.
class DialogLayout {
public:
    /// Rows come into `stack` from above to below.
    explicit DialogLayout(QVBoxLayout& stack) : outer_(&stack), stack_(&stack) {}

    void add(const DialogRow& row, const DialogField& field, bool has_row_beside);
    /// To be called behind the last one.
    void finish();
    /// Null where there are none.
    [[nodiscard]] QTabWidget* pages() const { return pages_; }

private:
    void begin_page(QWidget* page);
    void begin_group(const DialogRow& row, const DialogField& field);
    void end_groups();
    void add_beside(QWidget* button);
    [[nodiscard]] QGridLayout& grid();

    QVBoxLayout* outer_;
    QVBoxLayout* stack_;             ///< the dialog's, or the page's
    QTabWidget* pages_ = nullptr;    ///
    QHBoxLayout* columns_ = nullptr; ///< of groups
    QVBoxLayout* column_ = nullptr;  ///< where a group goes below the last
    QGridLayout* grid_ = nullptr;    ///< of the rows that stand together
    QVBoxLayout* beside_ = nullptr;  ///< the buttons beside the field before
    QHBoxLayout* line_ = nullptr;    ///< the fields of the line before
    bool follows_field_ = false;
};

} // namespace pellux
