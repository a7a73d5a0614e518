#include "windows/toolkit/qt/boxes/ask_boxes.h"

#include "windows/toolkit/qt/boxes/box.h"
#include "windows/toolkit/qt/boxes/dialog_field.h"
#include "windows/toolkit/qt/boxes/dialog_layout.h"
#include "windows/toolkit/qt/draw/pictures.h"
#include "windows/toolkit/qt/text_conversion.h"
#include "windows/toolkit/qt/windows/item_list.h"
#include "windows/toolkit/qt/windows/task_window.h"
#include "windows/toolkit/qt/windows/window_table.h"
#include "windows/toolkit/window.h"

#include <QApplication>
#include <QButtonGroup>
#include <QHBoxLayout>
#include <QHash>
#include <QKeyEvent>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QTabWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <array>
#include <utility>

namespace pellux {
namespace {

constexpr int k_image_px = 64;
constexpr std::array k_image_looks{ImageLook::normal};

QFont heading_font() {
    constexpr double k_larger = 1.5;
    QFont font = QApplication::font();
    font.setPointSizeF(font.pointSizeF() * k_larger);
    font.setBold(true);
    return font;
}

/// Rows of labels and fields in two columns; a button row stands beside the field before it.
class DialogBox : public Box {
public:
    DialogBox(QWidget* parent, const Question& question);

    /// Shows the question; what is there already is changed in place.
    void take(const Question& question);
    /// The rows as the user left them.
    [[nodiscard]] Vector<DialogRow> rows() const;
    void come_forward();
    /// Tells nobody any more.
    void detach() { watcher_ = {}; }

    void answer(int button) override;
    void reject() override;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    [[nodiscard]] bool has_shape_of(const Question& question) const;
    void build(const Question& question);
    void add_page_key(const QKeySequence& key, int step);
    void on_page_change();
    void listen(const DialogField& field);
    void on_change(std::size_t at);
    void tell(DialogAct::Kind kind, int number);
    void focus_first();

    const bool is_modeless_;
    int help_topic_ = 0;
    DialogWatcher watcher_;
    bool is_filling_ = false;
    Vector<DialogRow> asked_;
    Vector<DialogField> fields_;
    QWidget* body_ = nullptr;
    QTabWidget* pages_ = nullptr;
};

DialogBox::DialogBox(QWidget* parent, const Question& question)
    : Box(parent, to_qstring(view(question.title))), is_modeless_(question.is_modeless) {
    if (is_modeless_)
        setWindowModality(Qt::NonModal);
}

void DialogBox::take(const Question& question) {
    setUpdatesEnabled(false);
    is_filling_ = true;
    help_topic_ = question.help_topic;
    watcher_ = question.watcher;
    const bool is_new = !has_shape_of(question);
    if (is_new)
        build(question);
    asked_ = question.rows;
    QString mnemonics;
    for (std::size_t i = 0; i < fields_.size(); ++i) {
        const DialogRow& row = question.rows[i];
        fill_field(fields_[i], row);
        // A text above a field without a label is meant for it.
        if (i > 0 && fields_[i].widget->accessibleName().isEmpty() &&
            fields_[i - 1].kind == DialogRowKind::text)
            fields_[i].widget->setAccessibleName(
                spoken_label(to_qstring(view(question.rows[i - 1].label))));
        if (const QKeySequence used = QKeySequence::mnemonic(to_qstring(view(row.label)));
            !used.isEmpty() && row.kind != DialogRowKind::text)
            mnemonics += QChar(used[0].key());
    }
    set_buttons(to_titles(question.buttons), escape_button(question), mnemonics);
    disable_buttons(question.disabled_buttons);
    fit();
    is_filling_ = false;
    setUpdatesEnabled(true);
    if (is_new)
        focus_first();
}

void DialogBox::come_forward() {
    show();
    raise();
    activateWindow();
    focus_first();
}

/// A modeless one answers nobody; it tells.
void DialogBox::answer(int button) {
    if (is_modeless_)
        tell(DialogAct::Kind::pressed, button);
    else
        Box::answer(button);
}

void DialogBox::reject() {
    if (is_modeless_)
        tell(DialogAct::Kind::closed, 0);
    else
        Box::reject();
}

/// Nothing of the box may be touched afterwards.
void DialogBox::tell(DialogAct::Kind kind, int number) {
    if (is_filling_ || watcher_.on_act == nullptr)
        return;
    const Vector<DialogRow> now = rows();
    const DialogWatcher watcher = watcher_;
    watcher.on_act(watcher.context, {kind, number, now});
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
           std::ranges::equal(fields_, question.rows, [](const DialogField& a, const DialogRow& b) {
               return a.id == b.id && a.kind == b.kind && a.length_max == b.length_max &&
                      (a.label != nullptr) == has_label(b) && (a.note != nullptr) == has_note(b);
           });
}

void DialogBox::build(const Question& question) {
    delete body_;
    fields_.clear();
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
    auto* stack = new QVBoxLayout;
    halves->addLayout(stack, 1);
    DialogLayout layout(*stack);
    QButtonGroup* radio_group = nullptr;
    for (std::size_t i = 0; i < question.rows.size(); ++i) {
        const DialogRow& row = question.rows[i];
        const bool has_row_beside = i + 1 < question.rows.size() &&
                                    question.rows[i + 1].is_beside &&
                                    question.rows[i + 1].kind != DialogRowKind::group;
        fields_.push_back(make_field(row, body_, radio_group));
        layout.add(row, fields_.back(), has_row_beside);
        listen(fields_.back());
        if (question.image != 0 && i == 0)
            fields_[0].widget->setFont(heading_font());
    }
    layout.finish();
    pages_ = layout.pages();
    if (pages_ != nullptr) {
        add_page_key(QKeySequence(Qt::CTRL | Qt::Key_PageDown), 1);
        add_page_key(QKeySequence(Qt::CTRL | Qt::Key_PageUp), pages_->count() - 1);
        connect(pages_, &QTabWidget::currentChanged, this, [this] { on_page_change(); });
    }
}

/// Before the field that has the focus takes the key for itself.
void DialogBox::add_page_key(const QKeySequence& key, int step) {
    connect(new QShortcut(key, body_), &QShortcut::activated, this, [this, step] {
        pages_->setCurrentIndex((pages_->currentIndex() + step) % pages_->count());
    });
}

void DialogBox::on_page_change() {
    if (is_filling_)
        return;
    asked_ = rows();
    const auto page = std::ranges::find(fields_, pages_->currentWidget(), &DialogField::widget);
    tell(DialogAct::Kind::changed, page->id);
}

void DialogBox::listen(const DialogField& field) {
    if (field.kind == DialogRowKind::button)
        connect(static_cast<QPushButton*>(field.widget), &QPushButton::clicked, this,
                [this, id = field.id] { answer(k_button_rows + id); });
    if (field.kind == DialogRowKind::list)
        connect(static_cast<ItemList*>(field.widget), &ItemList::doubleClicked, this, [this] {
            if (QPushButton* button = default_button())
                button->click();
        });
    on_field_change(field, this, [this, at = fields_.size() - 1] { on_change(at); });
}

void DialogBox::on_change(std::size_t at) {
    if (is_filling_)
        return;
    const DialogRow before = std::exchange(asked_[at], rows()[at]);
    const DialogRow& now = asked_[at];
    // Of two radio buttons the one tells that has the mark now.
    const bool is_lost = now.kind == DialogRowKind::radio && now.selected == 0;
    if (!is_lost &&
        (now.value != before.value || now.selected != before.selected || now.color != before.color))
        tell(DialogAct::Kind::changed, now.id);
}

void DialogBox::focus_first() {
    for (const DialogField& field : fields_) {
        const bool is_editable = field.widget->focusPolicy() != Qt::NoFocus &&
                                 field.kind != DialogRowKind::text &&
                                 field.kind != DialogRowKind::button;
        if (!is_editable || !field.widget->isEnabled() || !field.widget->isVisibleTo(this))
            continue;
        focus_field(field);
        return;
    }
    if (QPushButton* button = default_button())
        button->setFocus(Qt::TabFocusReason);
}

Vector<DialogRow> DialogBox::rows() const {
    Vector<DialogRow> rows = asked_;
    for (std::size_t i = 0; i < fields_.size(); ++i)
        read_field(fields_[i], rows[i]);
    return rows;
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

/// Where modeless dialogs stood last, by their titles.
QHash<QString, QPoint> last_places;

/// The corner of the task window where a text's lines seldom reach.
QPoint first_place(const QWidget& box) {
    const TaskWindow* task = task_window();
    if (task == nullptr)
        return box.pos();
    const int margin = box.fontMetrics().height() * 2;
    const QWidget* area = task->centralWidget();
    return area->mapToGlobal(QPoint(area->width() - box.width() - margin, margin));
}

void place(DialogBox& box) {
    const QRect room = box.screen()->availableGeometry();
    const QPoint wanted = last_places.value(box.windowTitle(), first_place(box));
    const QPoint last = room.bottomRight() - QPoint(box.width(), box.height());
    box.move(std::max(std::min(wanted.x(), last.x()), room.left()),
             std::max(std::min(wanted.y(), last.y()), room.top()));
}

} // namespace

Answer ask_dialog(const Question& question) {
    QPointer<DialogBox> box = question.dialog == 0 ? nullptr : find_dialog(question.dialog);
    if (box == nullptr) {
        close_dialog(question.dialog);
        box = new DialogBox(box_parent(), question);
        if (question.dialog != 0)
            open_dialogs.push_back({question.dialog, box});
    }
    box->take(question);
    Answer answer = closed_answer(question);
    answer.button = box->wait().value_or(answer.button);
    if (box != nullptr)
        answer.rows = box->rows();
    if (question.dialog == 0)
        delete box;
    return answer;
}

void show_dialog(const Question& question, bool comes_forward) {
    QPointer<DialogBox> box = find_dialog(question.dialog);
    if (box == nullptr && !question.is_modeless)
        return;
    const bool is_new = box == nullptr;
    if (is_new) {
        close_dialog(question.dialog);
        box = new DialogBox(task_window(), question);
        open_dialogs.push_back({question.dialog, box});
    }
    box->take(question);
    if (is_new)
        place(*box);
    if (is_new || comes_forward)
        box->come_forward();
}

void close_dialog(std::uint64_t dialog) {
    const QPointer<DialogBox> box = find_dialog(dialog);
    std::erase_if(open_dialogs, [dialog](const OpenDialog& open) { return open.number == dialog; });
    if (box == nullptr)
        return;
    box->detach();
    if (box->windowModality() == Qt::NonModal)
        last_places[box->windowTitle()] = box->pos();
    const bool was_active = box->isActiveWindow();
    box->hide();
    // Not every window manager gives the focus back.
    if (was_active && box->parentWidget() != nullptr)
        box->parentWidget()->activateWindow();
    // What is asked over it waits for its user all the same.
    if (Box* over = box->findChild<Box*>(QString(), Qt::FindDirectChildrenOnly))
        QObject::connect(over, &QObject::destroyed, box, &QObject::deleteLater);
    else
        box->deleteLater();
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
