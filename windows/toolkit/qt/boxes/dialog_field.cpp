#include "windows/toolkit/qt/boxes/dialog_field.h"

#include "windows/toolkit/qt/boxes/box.h"
#include "windows/toolkit/qt/boxes/byte_edit.h"
#include "windows/toolkit/qt/boxes/choice_fields.h"
#include "windows/toolkit/qt/boxes/plain_text.h"
#include "windows/toolkit/qt/draw/theme.h"
#include "windows/toolkit/qt/text_conversion.h"
#include "windows/toolkit/qt/windows/item_list.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QShortcutEvent>
#include <QTabWidget>

#include <algorithm>
#include <array>
#include <utility>

namespace pellux {
namespace {

constexpr int k_list_lines = 10;
constexpr int k_list_characters = 40;
constexpr std::array k_labelled{DialogRowKind::edit,   DialogRowKind::combo,  DialogRowKind::list,
                                DialogRowKind::choice, DialogRowKind::number, DialogRowKind::color,
                                DialogRowKind::sample};
constexpr int k_column_characters = 6;

std::string_view take_until(char mark, std::string_view& text) {
    const std::size_t end = std::min(text.find(mark), text.size());
    const std::string_view taken = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return taken;
}

Vector<ListEntry> entries_of(const DialogRow& row) {
    Vector<ListEntry> entries;
    for (std::string_view text = view(row.value); !text.empty();) {
        std::string_view line = take_until('\n', text);
        ListEntry& entry = entries.emplace_back();
        entry.text = row.columns.empty() ? line : take_until('\t', line);
        while (!row.columns.empty() && !line.empty())
            entry.more.emplace_back(take_until('\t', line));
    }
    return entries;
}

/// One whose mnemonic takes effect at once, so that no key behind it comes too early.
template <typename Button>
class PromptButton : public Button {
public:
    using Button::Button;

protected:
    bool event(QEvent* event) override {
        if (event->type() != QEvent::Shortcut || static_cast<QShortcutEvent*>(event)->isAmbiguous())
            return Button::event(event);
        this->setFocus(Qt::ShortcutFocusReason);
        this->click();
        return true;
    }
};

QWidget* make_widget(const DialogRow& row, QWidget* parent, QButtonGroup*& group) {
    switch (row.kind) {
    case DialogRowKind::text:
        return new PlainText(QString());
    case DialogRowKind::edit:
        return new ByteEdit(row.length_max, parent);
    case DialogRowKind::combo:
        return new ByteCombo(row.length_max, parent);
    case DialogRowKind::check:
        return new PromptButton<QCheckBox>(parent);
    case DialogRowKind::radio: {
        if (group == nullptr)
            group = new QButtonGroup(parent);
        auto* radio = new PromptButton<QRadioButton>(parent);
        group->addButton(radio);
        return radio;
    }
    case DialogRowKind::list: {
        auto* list = new ItemList(parent);
        const int lines = row.lines > 0 ? row.lines : k_list_lines;
        const int characters =
            k_list_characters + k_column_characters * static_cast<int>(row.columns.size());
        list->setMinimumSize(list->fontMetrics().averageCharWidth() * characters,
                             list->fontMetrics().lineSpacing() * lines);
        if (row.lines > 0)
            list->setMaximumHeight(list->minimumHeight());
        return list;
    }
    case DialogRowKind::button:
        return new QPushButton(parent);
    case DialogRowKind::choice:
        return new QComboBox(parent);
    case DialogRowKind::number:
        return new NumberEdit(parent);
    case DialogRowKind::color:
        return new ColorBox(parent);
    case DialogRowKind::sample:
        return new SampleText(parent);
    case DialogRowKind::page:
        return new QWidget(parent);
    case DialogRowKind::group:
        return new QGroupBox(parent);
    }
    return nullptr;
}

void fill_choice(QComboBox& box, const DialogRow& row) {
    QStringList entries;
    for (const String& entry : row.entries)
        entries.push_back(to_qstring(view(entry)));
    bool is_same = box.count() == entries.size();
    for (int i = 0; is_same && i < box.count(); ++i)
        is_same = box.itemText(i) == entries[i];
    if (!is_same) {
        box.clear();
        box.addItems(entries);
    }
    box.setCurrentIndex(row.selected);
}

/// The pages, of which `page` is one.
QTabWidget* pages_of(const QWidget* page) {
    for (QWidget* each = page->parentWidget(); each != nullptr; each = each->parentWidget())
        if (auto* pages = qobject_cast<QTabWidget*>(each))
            return pages;
    return nullptr;
}

void fill_page(QWidget& page, const DialogRow& row) {
    QTabWidget* pages = pages_of(&page);
    if (pages == nullptr)
        return;
    const int index = pages->indexOf(&page);
    pages->setTabText(index, to_qstring(view(row.label)));
    if (row.selected == 1)
        pages->setCurrentIndex(index);
}

void fill_note(QLabel& note, const DialogRow& row) {
    const bool is_fault = !row.fault.empty();
    note.setText(to_qstring(view(is_fault ? row.fault : row.hint)));
    if (is_fault) {
        QPalette palette = note.palette();
        palette.setColor(QPalette::WindowText, shown_ink(Color::red, Color::light_gray));
        note.setPalette(palette);
    }
    note.setForegroundRole(is_fault ? QPalette::WindowText : QPalette::PlaceholderText);
}

void fill_list(ItemList& list, const DialogRow& row) {
    list.set_columns(row.columns);
    if (Vector<ListEntry> entries = entries_of(row); entries != list.model_of_items().entries())
        list.model_of_items().set_entries(std::move(entries));
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
    return !row.label.empty() && std::ranges::find(k_labelled, row.kind) != k_labelled.end();
}

bool has_note(const DialogRow& row) {
    return row.kind == DialogRowKind::number || !row.hint.empty();
}

QString spoken_label(QString label) {
    if (label.endsWith(u':'))
        label.chop(1);
    return label;
}

DialogField make_field(const DialogRow& row, QWidget* parent, QButtonGroup*& group) {
    if (row.kind != DialogRowKind::radio)
        group = nullptr;
    DialogField field{.id = row.id,
                      .kind = row.kind,
                      .length_max = row.length_max,
                      .widget = make_widget(row, parent, group)};
    if (has_label(row)) {
        field.label = new QLabel(parent);
        field.label->setTextFormat(Qt::PlainText);
        field.label->setBuddy(field.widget);
    }
    if (has_note(row)) {
        field.note = new QLabel(parent);
        field.note->setTextFormat(Qt::PlainText);
    }
    return field;
}

void fill_field(const DialogField& field, const DialogRow& row) {
    const QString label = to_qstring(view(row.label));
    if (field.label != nullptr)
        field.label->setText(label);
    field.widget->setEnabled(row.is_enabled);
    if (field.note != nullptr) {
        fill_note(*field.note, row);
        field.widget->setAccessibleDescription(field.note->text());
    }
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
    case DialogRowKind::choice:
        fill_choice(*static_cast<QComboBox*>(field.widget), row);
        break;
    case DialogRowKind::number: {
        auto* number = static_cast<NumberEdit*>(field.widget);
        number->set_limits(row.least, row.most);
        number->set_value(view(row.value));
        break;
    }
    case DialogRowKind::color:
        static_cast<ColorBox*>(field.widget)->set_color(row.color);
        break;
    case DialogRowKind::sample:
        static_cast<SampleText*>(field.widget)->set_runs(row.runs);
        break;
    case DialogRowKind::page:
        fill_page(*field.widget, row);
        break;
    case DialogRowKind::group:
        static_cast<QGroupBox*>(field.widget)->setTitle(label);
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
    case DialogRowKind::choice:
        row.selected = static_cast<QComboBox*>(field.widget)->currentIndex();
        break;
    case DialogRowKind::number:
        row.value = static_cast<NumberEdit*>(field.widget)->value();
        break;
    case DialogRowKind::color:
        row.color = static_cast<ColorBox*>(field.widget)->color();
        break;
    case DialogRowKind::page:
        if (const QTabWidget* pages = pages_of(field.widget))
            row.selected = pages->currentWidget() == field.widget ? 1 : 0;
        break;
    case DialogRowKind::text:
    case DialogRowKind::button:
    case DialogRowKind::sample:
    case DialogRowKind::group:
        break;
    }
}

void focus_field(const DialogField& field) {
    field.widget->setFocus(Qt::TabFocusReason);
    if (field.kind == DialogRowKind::edit)
        static_cast<ByteEdit*>(field.widget)->selectAll();
    else if (field.kind == DialogRowKind::combo)
        static_cast<ByteCombo*>(field.widget)->lineEdit()->selectAll();
    else if (field.kind == DialogRowKind::number)
        static_cast<NumberEdit*>(field.widget)->selectAll();
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
    case DialogRowKind::choice:
    case DialogRowKind::color:
        QObject::connect(static_cast<QComboBox*>(field.widget), &QComboBox::currentIndexChanged,
                         context, call);
        break;
    case DialogRowKind::number:
        QObject::connect(&static_cast<NumberEdit*>(field.widget)->field(), &QLineEdit::textChanged,
                         context, call);
        break;
    case DialogRowKind::text:
    case DialogRowKind::button:
    case DialogRowKind::sample:
    case DialogRowKind::page:
    case DialogRowKind::group:
        break;
    }
}

} // namespace pellux
