#include "windows/toolkit/qt/boxes/ask_boxes.h"

#include "windows/toolkit/error_line.h"
#include "windows/toolkit/qt/boxes/box.h"
#include "windows/toolkit/qt/boxes/plain_text.h"
#include "windows/toolkit/qt/text_conversion.h"

#include <QAccessible>
#include <QApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>

namespace pellux {
namespace {

/// An icon, a text, and buttons.
class MessageBox : public Box {
public:
    MessageBox(QWidget* parent, QuestionKind kind, const QString& title, const QString& text)
        : Box(parent, title) {
        auto* row = new QHBoxLayout;
        auto* icon = new QLabel;
        icon->setPixmap(box_icon(kind, fontMetrics().height() * 5 / 2, devicePixelRatioF()));
        auto* message = new PlainText(text);
        row->addWidget(icon, 0, Qt::AlignTop);
        row->addSpacing(fontMetrics().averageCharWidth());
        row->addWidget(message, 1, Qt::AlignVCenter);
        contents().addLayout(row);
        setAccessibleDescription(text);
    }

protected:
    void showEvent(QShowEvent* event) override {
        Box::showEvent(event);
        if (QPushButton* button = default_button())
            button->setFocus();
        QAccessibleEvent alert(this, QAccessible::Alert);
        QAccessible::updateAccessibility(&alert);
    }
};

Answer ask_message(const Question& question) {
    const QPointer<MessageBox> box =
        new MessageBox(box_parent(), question.kind, to_qstring(view(question.title)),
                       to_qstring(view(question.text)));
    box->set_buttons(to_titles(question.buttons), escape_button(question));
    Answer answer = closed_answer(question);
    answer.button = box->wait().value_or(answer.button);
    delete box;
    return answer;
}

Answer on_ask(void*, const Question& question) {
    if (QApplication::instance() == nullptr)
        return closed_answer(question);
    switch (question.kind) {
    case QuestionKind::ask:
    case QuestionKind::note:
    case QuestionKind::warning:
    case QuestionKind::error:
        return ask_message(question);
    case QuestionKind::string:
        return ask_string(question);
    case QuestionKind::file_open:
    case QuestionKind::files_open:
    case QuestionKind::file_save:
        return ask_file(question);
    case QuestionKind::font:
        return ask_font(question);
    case QuestionKind::dialog:
        return ask_dialog(question);
    }
    return closed_answer(question);
}

/// Keeps everything but one box from running: the rest of the program may be damaged.
class Standstill : public QObject {
public:
    explicit Standstill(const QWidget* box) : box_(box) { qApp->installEventFilter(this); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched->isWidgetType()) {
            const QObject* part = watched;
            while (part != nullptr && part != box_)
                part = part->parent();
            return part == nullptr;
        }
        return event->type() == QEvent::Timer || event->type() == QEvent::SockAct ||
               event->type() == QEvent::MetaCall;
    }

private:
    const QWidget* box_;
};

void on_fatal_exit(void*, const char* text) {
    static constinit bool is_shown = false;
    if (QApplication::instance() == nullptr || QApplication::closingDown() || is_shown) {
        write_error_line(text);
        return;
    }
    is_shown = true;
    MessageBox box(nullptr, QuestionKind::error, QString(), to_qstring(text));
    box.set_buttons({QStringLiteral("OK")}, 0);
    const Standstill standstill(&box);
    box.wait_whatever_happens();
    is_shown = false;
}

void on_show_dialog(void*, const Question& question, bool comes_forward) {
    if (QApplication::instance() != nullptr)
        show_dialog(question, comes_forward);
}

void on_end_dialog(void*, std::uint64_t dialog) {
    close_dialog(dialog);
}

} // namespace

AskSeam qt_ask() {
    return {on_ask, on_show_dialog, on_fatal_exit, on_end_dialog, nullptr};
}

} // namespace pellux
