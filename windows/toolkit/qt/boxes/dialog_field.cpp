#include "windows/toolkit/qt/boxes/dialog_field.h"

#include "windows/toolkit/qt/boxes/box.h"
#include "windows/toolkit/qt/boxes/byte_edit.h"
#include "windows/toolkit/qt/boxes/plain_text.h"
#include "windows/toolkit/qt/text_conversion.h"
#include "windows/toolkit/qt/windows/item_list.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>

#include <algorithm>

namespace pellux {
namespace {

constexpr int k_list_lines = 10;
constexpr int k_list_characters = 40;

Vector<String> lines_of(std::string_view text) {
    Vector<String> lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        lines.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

QWidget* make_widget(const DialogRow& row, QWidget* parent, QButtonGroup*& group) {
    switch (row.kind) {
    case DialogRowKind::text:
        return new PlainText(QString());
    case DialogRowKind::edit:
        return new ByteEdit(row.length_max, parent);
    case DialogRowKind::combo:
        return new ByteCombo(row.length_max, parent);
    case DialogRowKind::check:
        return new QCheckBox(parent);
    case DialogRowKind::radio: {
        if (group == nullptr)
            group = new QButtonGroup(parent);
        auto* radio = new QRadioButton(parent);
        group->addButton(radio);
        return radio;
    }
    case DialogRowKind::list: {
        auto* list = new ItemList(parent);
        list->setMinimumSize(list->fontMetrics().averageCharWidth() * k_list_characters,
                             list->fontMetrics().lineSpacing() * k_list_lines);
        return list;
    }
    case DialogRowKind::button:
        return new QPushButton(parent);
    }
    return nullptr;
}

void fill_list(ItemList& list, const DialogRow& row) {
    const Vector<String> items = lines_of(view(row.value));
    if (!std::ranges::equal(items, list.model_of_items().entries(), {}, {}, &ListEntry::text))
        list.model_of_items().set_entries(plain_entries(items));
    if (list.selected() != row.selected)
        list.select(row.selected);
}

void fill_mark(QAbstractButton& button, const DialogRow& row) {
    button.setText(to_qstring(view(row.label)));
    button.setChecked(row.selected == 1);
    // Tab goes to the one that is checked.
    if (row.kind == DialogRowKind::radio && button.isChecked())
        for (QAbstractButton* each : button.group()->buttons())
            each->setFocusPolicy(each == &button ? Qt::StrongFocus : Qt::ClickFocus);
}

} // namespace

bool has_label(const DialogRow& row) {
    return (row.kind == DialogRowKind::edit || row.kind == DialogRowKind::combo ||
            row.kind == DialogRowKind::list) &&
           !row.label.empty();
}

QString spoken_label(QString label) {
    if (label.endsWith(u':'))
        label.chop(1);
    return label;
}

DialogField make_field(const DialogRow& row, QWidget* parent, QButtonGroup*& group) {
    if (row.kind != DialogRowKind::radio)
        group = nullptr;
    DialogField field{row.id, row.kind, row.length_max, nullptr, make_widget(row, parent, group)};
    if (has_label(row)) {
        field.label = new QLabel(parent);
        field.label->setTextFormat(Qt::PlainText);
        field.label->setBuddy(field.widget);
    }
    return field;
}

void fill_field(const DialogField& field, const DialogRow& row) {
    const QString label = to_qstring(view(row.label));
    if (field.label != nullptr)
        field.label->setText(label);
    field.widget->setEnabled(row.is_enabled);
    const QString spoken = spoken_label(without_mnemonic(label));
    switch (row.kind) {
    case DialogRowKind::text:
        static_cast<PlainText*>(field.widget)->set_text(label);
        return;
    case DialogRowKind::edit:
        static_cast<ByteEdit*>(field.widget)->set_value(view(row.value));
        break;
    case DialogRowKind::combo: {
        auto* combo = static_cast<ByteCombo*>(field.widget);
        combo->set_entries(row.entries);
        combo->set_value(view(row.value));
        combo->lineEdit()->setAccessibleName(spoken);
        break;
    }
    case DialogRowKind::check:
    case DialogRowKind::radio:
        fill_mark(*static_cast<QAbstractButton*>(field.widget), row);
        break;
    case DialogRowKind::list:
        fill_list(*static_cast<ItemList*>(field.widget), row);
        break;
    case DialogRowKind::button:
        static_cast<QPushButton*>(field.widget)->setText(label);
        break;
    }
    field.widget->setAccessibleName(spoken);
}

void read_field(const DialogField& field, DialogRow& row) {
    switch (field.kind) {
    case DialogRowKind::edit:
        row.value = static_cast<ByteEdit*>(field.widget)->value();
        break;
    case DialogRowKind::combo:
        row.value = static_cast<ByteCombo*>(field.widget)->value();
        break;
    case DialogRowKind::check:
    case DialogRowKind::radio:
        row.selected = static_cast<QAbstractButton*>(field.widget)->isChecked() ? 1 : 0;
        break;
    case DialogRowKind::list:
        row.selected = static_cast<ItemList*>(field.widget)->selected();
        break;
    case DialogRowKind::text:
    case DialogRowKind::button:
        break;
    }
}

void focus_field(const DialogField& field) {
    field.widget->setFocus(Qt::TabFocusReason);
    if (field.kind == DialogRowKind::edit)
        static_cast<ByteEdit*>(field.widget)->selectAll();
    else if (field.kind == DialogRowKind::combo)
        static_cast<ByteCombo*>(field.widget)->lineEdit()->selectAll();
}

void on_field_change(const DialogField& field, QObject* context,
                     const std::function<void()>& call) {
    switch (field.kind) {
    case DialogRowKind::edit:
        QObject::connect(static_cast<ByteEdit*>(field.widget), &QLineEdit::textChanged, context,
                         call);
        break;
    case DialogRowKind::combo:
        QObject::connect(static_cast<ByteCombo*>(field.widget), &QComboBox::editTextChanged,
                         context, call);
        break;
    case DialogRowKind::check:
    case DialogRowKind::radio:
        QObject::connect(static_cast<QAbstractButton*>(field.widget), &QAbstractButton::toggled,
                         context, call);
        break;
    case DialogRowKind::list:
        QObject::connect(static_cast<ItemList*>(field.widget)->selectionModel(),
                         &QItemSelectionModel::selectionChanged, context, call);
        break;
    case DialogRowKind::text:
    case DialogRowKind::button:
        break;
    }
}

} // namespace pellux
