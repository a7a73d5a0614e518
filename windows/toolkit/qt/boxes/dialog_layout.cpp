#include "windows/toolkit/qt/boxes/dialog_layout.h"

#include <QGridLayout>
#include <QLabel>
#include <QTabWidget>
#include <QVBoxLayout>

namespace pellux {
namespace {

enum Column : int { label_column, field_column, note_column, button_column };

bool is_high(DialogRowKind kind) {
    return kind == DialogRowKind::list || kind == DialogRowKind::sample;
}

/// May a button stand beside it?
bool is_field(DialogRowKind kind) {
    return kind == DialogRowKind::edit || kind == DialogRowKind::combo ||
           kind == DialogRowKind::list;
}

} // namespace

QGridLayout& DialogLayout::grid() {
    if (grid_ == nullptr) {
        grid_ = new QGridLayout;
        grid_->setColumnStretch(field_column, 1);
        stack_->addLayout(grid_, 1);
    }
    return *grid_;
}

void DialogLayout::add(const DialogRow& row, const DialogField& field, bool has_row_beside) {
    if (row.kind == DialogRowKind::page) {
        begin_page(field.widget);
        return;
    }
    if (row.kind == DialogRowKind::group) {
        begin_group(row, field);
        return;
    }
    QGridLayout& grid = this->grid();
    const int line = grid.rowCount();
    if (row.kind == DialogRowKind::button) {
        add_beside(field.widget);
        return;
    }
    if (row.is_beside && line_ != nullptr) {
        line_->insertWidget(line_->count() - 1, field.widget);
    } else {
        const bool is_labelled = field.label != nullptr;
        if (is_labelled)
            grid.addWidget(field.label, line, label_column,
                           (is_high(row.kind) ? Qt::AlignTop : Qt::AlignVCenter) | Qt::AlignLeft);
        const int first = is_labelled || has_row_beside ? field_column : label_column;
        if (has_row_beside) {
            line_ = new QHBoxLayout;
            line_->setSpacing(field.widget->fontMetrics().height());
            line_->addWidget(field.widget);
            line_->addStretch();
            grid.addLayout(line_, line, first);
        } else {
            grid.addWidget(field.widget, line, first, 1, field_column - first + 1,
                           row.kind == DialogRowKind::color ? Qt::AlignLeft : Qt::Alignment());
        }
        if (field.note != nullptr)
            grid.addWidget(field.note, line, note_column);
        if (row.kind == DialogRowKind::list)
            grid.setRowStretch(line, 1);
    }
    if (!has_row_beside)
        line_ = nullptr;
    beside_ = nullptr;
    follows_field_ = is_field(row.kind);
}

void DialogLayout::add_beside(QWidget* button) {
    QGridLayout& grid = this->grid();
    if (beside_ == nullptr) {
        beside_ = new QVBoxLayout;
        if (follows_field_)
            grid.addLayout(beside_, grid.rowCount() - 1, button_column, Qt::AlignTop);
        else
            grid.addLayout(beside_, grid.rowCount(), label_column, 1, 2,
                           Qt::AlignTop | Qt::AlignLeft);
    }
    beside_->addWidget(button);
}

void DialogLayout::begin_page(QWidget* page) {
    finish();
    if (pages_ == nullptr) {
        pages_ = new QTabWidget;
        outer_->addWidget(pages_, 1);
    }
    pages_->addTab(page, QString());
    stack_ = new QVBoxLayout(page);
}

void DialogLayout::begin_group(const DialogRow& row, const DialogField& field) {
    if (row.label.empty()) {
        field.widget->hide();
        end_groups();
        return;
    }
    if (columns_ == nullptr) {
        columns_ = new QHBoxLayout;
        stack_->addLayout(columns_);
    }
    if (column_ == nullptr || row.is_beside) {
        if (column_ != nullptr)
            column_->addStretch();
        column_ = new QVBoxLayout;
        columns_->addLayout(column_, 1);
    }
    column_->addWidget(field.widget);
    grid_ = new QGridLayout(field.widget);
    grid_->setColumnStretch(field_column, 1);
    beside_ = nullptr;
    follows_field_ = false;
}

void DialogLayout::end_groups() {
    if (column_ != nullptr)
        column_->addStretch();
    columns_ = nullptr;
    column_ = nullptr;
    grid_ = nullptr;
    line_ = nullptr;
    beside_ = nullptr;
    follows_field_ = false;
}

void DialogLayout::finish() {
    end_groups();
    if (stack_ != outer_)
        stack_->addStretch();
    stack_ = outer_;
}

} // namespace pellux
