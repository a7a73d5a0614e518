#include "windows/toolkit/qt/boxes/ask_boxes.h"

#include "windows/toolkit/qt/boxes/box.h"
#include "windows/toolkit/qt/boxes/byte_edit.h"
#include "windows/toolkit/qt/boxes/plain_text.h"
#include "windows/toolkit/qt/draw/pictures.h"
#include "windows/toolkit/qt/text_conversion.h"
#include "windows/toolkit/qt/windows/item_list.h"
#include "windows/toolkit/qt/windows/window_table.h"
#include "windows/toolkit/window.h"

#include <QApplication>
#include <QButtonGroup>
#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include <algorithm>
#include <array>
#include <utility>

namespace pellux {
namespace {

constexpr int k_list_lines = 10;
constexpr int k_list_characters = 40;
constexpr int k_image_px = 64;
constexpr std::array k_image_looks{ImageLook::normal};

Vector<String> lines_of(std::string_view text) {
    Vector<String> lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        lines.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

bool has_label(const DialogRow& row) {
    return (row.kind == DialogRowKind::edit || row.kind == DialogRowKind::list) &&
           !row.label.empty();
}

/// What a screen reader says for a label.
QString spoken(QString label) {
    if (label.endsWith(u':'))
        label.chop(1);
    return label;
}

QFont heading_font() {
    constexpr double k_larger = 1.5;
    QFont font = QApplication::font();
    font.setPointSizeF(font.pointSizeF() * k_larger);
    font.setBold(true);
    return font;
}

/// A row as it stands on the screen.
struct ShownRow {
    int id = 0;
    DialogRowKind kind = DialogRowKind::text;
    int length_max = 0;
    QLabel* label = nullptr;
    QWidget* field = nullptr;
};

/// Rows of labels and fields in two columns; a button row stands beside the field before it.
class DialogBox : public Box {
public:
    DialogBox(QWidget* parent, const QString& title) : Box(parent, title) {}

    /// Shows the question; what is there already is changed in place.
    void take(const Question& question);
    void give(Vector<DialogRow>& rows) const;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    [[nodiscard]] bool has_shape_of(const Question& question) const;
    void build(const Question& question);
    QWidget* make_field(const DialogRow& row);
    void add_beside(QGridLayout& grid, QPushButton* button);
    void fill(ShownRow& shown, const DialogRow& row);
    void focus_first();

    int help_topic_ = 0;
    Vector<ShownRow> rows_;
    QWidget* body_ = nullptr;
    QButtonGroup* radio_group_ = nullptr; ///< of the radio row before, while rows are made
    QVBoxLayout* beside_ = nullptr;       ///< the buttons beside the field before
};

void DialogBox::take(const Question& question) {
    setUpdatesEnabled(false);
    help_topic_ = question.help_topic;
    const bool is_new = !has_shape_of(question);
    if (is_new)
        build(question);
    QString mnemonics;
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        fill(rows_[i], question.rows[i]);
        // A text above a field without a label is meant for it.
        if (i > 0 && rows_[i].field->accessibleName().isEmpty() &&
            rows_[i - 1].kind == DialogRowKind::text)
            rows_[i].field->setAccessibleName(spoken(to_qstring(view(question.rows[i - 1].label))));
        if (const QKeySequence used =
                QKeySequence::mnemonic(to_qstring(view(question.rows[i].label)));
            !used.isEmpty() && question.rows[i].kind != DialogRowKind::text)
            mnemonics += QChar(used[0].key());
    }
    set_buttons(to_titles(question.buttons), escape_button(question), mnemonics);
    fit();
    setUpdatesEnabled(true);
    if (is_new)
        focus_first();
}

/// The page is the program's to show.
void DialogBox::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_F1 && help_topic_ != 0)
        deliver(xvt_win_get_task(), Event{HelpEvent{.topic = help_topic_}});
    else
        Box::keyPressEvent(event);
}

bool DialogBox::has_shape_of(const Question& question) const {
    return body_ != nullptr &&
           std::ranges::equal(rows_, question.rows, [](const ShownRow& a, const DialogRow& b) {
               return a.id == b.id && a.kind == b.kind && a.length_max == b.length_max &&
                      (a.label != nullptr) == has_label(b);
           });
}

void DialogBox::build(const Question& question) {
    delete body_;
    rows_.clear();
    radio_group_ = nullptr;
    beside_ = nullptr;
    body_ = new QWidget;
    contents().addWidget(body_);
    auto* halves = new QHBoxLayout(body_);
    halves->setContentsMargins(0, 0, 0, 0);
    if (question.image != 0) {
        auto* image = new QLabel;
        image->setPixmap(
            picture_icon(question.image, k_image_px, devicePixelRatioF(), k_image_looks)
                .pixmap(k_image_px));
        halves->addWidget(image, 0, Qt::AlignTop);
        halves->addSpacing(fontMetrics().height());
    }
    auto* grid = new QGridLayout;
    halves->addLayout(grid, 1);
    grid->setColumnStretch(1, 1);
    for (const DialogRow& row : question.rows) {
        ShownRow shown{row.id, row.kind, row.length_max, nullptr, make_field(row)};
        if (question.image != 0 && rows_.empty())
            shown.field->setFont(heading_font());
        const int line = grid->rowCount();
        if (row.kind == DialogRowKind::button) {
            add_beside(*grid, static_cast<QPushButton*>(shown.field));
        } else if (has_label(row)) {
            shown.label = new QLabel;
            shown.label->setTextFormat(Qt::PlainText);
            shown.label->setBuddy(shown.field);
            const bool is_list = row.kind == DialogRowKind::list;
            grid->addWidget(shown.label, line, 0,
                            is_list ? Qt::AlignTop | Qt::AlignLeft
                                    : Qt::AlignVCenter | Qt::AlignLeft);
            grid->addWidget(shown.field, line, 1);
        } else {
            grid->addWidget(shown.field, line, 0, 1, 2);
        }
        if (row.kind != DialogRowKind::button)
            beside_ = nullptr;
        if (row.kind == DialogRowKind::list)
            grid->setRowStretch(line, 1);
        rows_.push_back(shown);
    }
}

QWidget* DialogBox::make_field(const DialogRow& row) {
    if (row.kind != DialogRowKind::radio)
        radio_group_ = nullptr;
    switch (row.kind) {
    case DialogRowKind::text:
        return new PlainText(QString());
    case DialogRowKind::edit:
        return new ByteEdit(row.length_max, body_);
    case DialogRowKind::check:
        return new QCheckBox(body_);
    case DialogRowKind::radio: {
        if (radio_group_ == nullptr)
            radio_group_ = new QButtonGroup(body_);
        auto* radio = new QRadioButton(body_);
        radio_group_->addButton(radio);
        return radio;
    }
    case DialogRowKind::list: {
        auto* list = new ItemList(body_);
        list->setMinimumSize(list->fontMetrics().averageCharWidth() * k_list_characters,
                             list->fontMetrics().lineSpacing() * k_list_lines);
        connect(list, &ItemList::doubleClicked, this, [this] {
            if (QPushButton* button = default_button())
                button->click();
        });
        return list;
    }
    case DialogRowKind::button: {
        auto* button = new QPushButton(body_);
        connect(button, &QPushButton::clicked, this,
                [this, id = row.id] { answer(k_button_rows + id); });
        return button;
    }
    }
    return nullptr;
}

void DialogBox::add_beside(QGridLayout& grid, QPushButton* button) {
    if (beside_ == nullptr) {
        beside_ = new QVBoxLayout;
        const bool follows_field = !rows_.empty() && (rows_.back().kind == DialogRowKind::edit ||
                                                      rows_.back().kind == DialogRowKind::list);
        if (follows_field)
            grid.addLayout(beside_, grid.rowCount() - 1, 2, Qt::AlignTop);
        else
            grid.addLayout(beside_, grid.rowCount(), 0, 1, 2, Qt::AlignTop | Qt::AlignLeft);
    }
    beside_->addWidget(button);
}

void DialogBox::fill(ShownRow& shown, const DialogRow& row) {
    const QString label = to_qstring(view(row.label));
    if (shown.label != nullptr)
        shown.label->setText(label);
    shown.field->setEnabled(row.is_enabled);
    switch (row.kind) {
    case DialogRowKind::text:
        static_cast<PlainText*>(shown.field)->set_text(label);
        return;
    case DialogRowKind::edit:
        static_cast<ByteEdit*>(shown.field)->set_value(view(row.value));
        break;
    case DialogRowKind::check:
    case DialogRowKind::radio: {
        auto* button = static_cast<QAbstractButton*>(shown.field);
        button->setText(label);
        button->setChecked(row.selected == 1);
        // Tab goes to the one that is checked.
        if (row.kind == DialogRowKind::radio && button->isChecked())
            for (QAbstractButton* each : button->group()->buttons())
                each->setFocusPolicy(each == button ? Qt::StrongFocus : Qt::ClickFocus);
        break;
    }
    case DialogRowKind::list: {
        auto* list = static_cast<ItemList*>(shown.field);
        const Vector<String> items = lines_of(view(row.value));
        if (!std::ranges::equal(items, list->model_of_items().entries(), {}, {}, &ListEntry::text))
            list->model_of_items().set_entries(plain_entries(items));
        if (list->selected() != row.selected)
            list->select(row.selected);
        break;
    }
    case DialogRowKind::button:
        static_cast<QPushButton*>(shown.field)->setText(label);
        break;
    }
    shown.field->setAccessibleName(spoken(without_mnemonic(label)));
}

void DialogBox::focus_first() {
    for (const ShownRow& row : rows_) {
        const bool is_editable =
            row.kind != DialogRowKind::text && row.kind != DialogRowKind::button;
        if (!is_editable || !row.field->isEnabled())
            continue;
        row.field->setFocus(Qt::TabFocusReason);
        return;
    }
    if (QPushButton* button = default_button())
        button->setFocus(Qt::TabFocusReason);
}

void DialogBox::give(Vector<DialogRow>& rows) const {
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        QWidget* field = rows_[i].field;
        switch (rows_[i].kind) {
        case DialogRowKind::edit:
            rows[i].value = static_cast<ByteEdit*>(field)->value();
            break;
        case DialogRowKind::check:
        case DialogRowKind::radio:
            rows[i].selected = static_cast<QAbstractButton*>(field)->isChecked() ? 1 : 0;
            break;
        case DialogRowKind::list:
            rows[i].selected = static_cast<ItemList*>(field)->selected();
            break;
        case DialogRowKind::text:
        case DialogRowKind::button:
            break;
        }
    }
}

struct OpenDialog {
    std::uint64_t number = 0;
    QPointer<DialogBox> box;
};
Vector<OpenDialog> open_dialogs;

QPointer<DialogBox> find_dialog(std::uint64_t number) {
    const auto found = std::ranges::find(open_dialogs, number, &OpenDialog::number);
    return found == open_dialogs.end() ? nullptr : found->box;
}

} // namespace

Answer ask_dialog(const Question& question) {
    QPointer<DialogBox> box = question.dialog == 0 ? nullptr : find_dialog(question.dialog);
    if (box == nullptr) {
        close_dialog(question.dialog);
        box = new DialogBox(box_parent(), to_qstring(view(question.title)));
        if (question.dialog != 0)
            open_dialogs.push_back({question.dialog, box});
    }
    box->take(question);
    Answer answer = closed_answer(question);
    answer.button = box->wait().value_or(answer.button);
    if (box != nullptr)
        box->give(answer.rows);
    if (question.dialog == 0)
        delete box;
    return answer;
}

void close_dialog(std::uint64_t dialog) {
    std::erase_if(open_dialogs, [dialog](const OpenDialog& open) {
        if (open.number != dialog)
            return false;
        if (open.box != nullptr) {
            open.box->hide();
            open.box->deleteLater();
        }
        return true;
    });
}

Answer ask_string(const Question& question) {
    Question dialog;
    dialog.kind = QuestionKind::dialog;
    dialog.title = question.title;
    dialog.buttons = question.buttons;
    DialogRow prompt;
    prompt.id = 1;
    prompt.label = question.text;
    DialogRow field;
    field.id = 2;
    field.kind = DialogRowKind::edit;
    field.value = question.value;
    field.length_max = question.length_max;
    dialog.rows = {std::move(prompt), std::move(field)};
    Answer answer = ask_dialog(dialog);
    answer.value = std::move(answer.rows[1].value);
    answer.rows.clear();
    return answer;
}

} // namespace pellux
