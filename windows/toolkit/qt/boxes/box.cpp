#include "windows/toolkit/qt/boxes/box.h"

#include "windows/toolkit/qt/text_conversion.h"
#include "windows/toolkit/qt/windows/task_window.h"

#include <QApplication>
#include <QEventLoop>
#include <QHBoxLayout>
#include <QKeySequence>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

#include <algorithm>

namespace pellux {
namespace {

constexpr int k_button_width_min = 84;

/// The title with a mnemonic of its own where one is free; adds it to `taken`.
QString with_mnemonic(const QString& title, QString& taken) {
    if (!QKeySequence::mnemonic(title).isEmpty())
        return title;
    for (qsizetype i = 0; i < title.size(); ++i)
        if (title[i].isLetter() && !taken.contains(title[i], Qt::CaseInsensitive)) {
            taken += title[i];
            return QString(title).insert(i, u'&');
        }
    return title;
}

} // namespace

Box::Box(QWidget* parent, const QString& title) : QDialog(parent) {
    setWindowTitle(title.isEmpty() ? QGuiApplication::applicationDisplayName() : title);
    setWindowModality(Qt::ApplicationModal);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    auto* rows = new QVBoxLayout(this);
    const int margin = fontMetrics().height();
    rows->setContentsMargins(margin, margin, margin, margin);
    contents_ = new QVBoxLayout;
    button_row_ = new QHBoxLayout;
    rows->addLayout(contents_, 1);
    rows->addSpacing(margin / 2);
    rows->addLayout(button_row_);
}

Box::~Box() {
    if (loop_ != nullptr)
        loop_->quit();
}

void Box::set_buttons(const QStringList& titles, int escape, QString taken) {
    escape_ = escape;
    if (buttons_.size() != titles.size()) {
        qDeleteAll(buttons_);
        buttons_.clear();
        if (button_row_->count() == 0)
            button_row_->addStretch();
        for (int i = 0; i < static_cast<int>(titles.size()); ++i) {
            auto* button = new QPushButton(this);
            button->setMinimumWidth(k_button_width_min);
            button_row_->addWidget(button);
            buttons_.push_back(button);
            connect(button, &QPushButton::clicked, this, [this, i] { answer(i); });
        }
        if (!buttons_.empty())
            buttons_.front()->setDefault(true);
    }
    for (const QString& title : titles)
        if (const QKeySequence own = QKeySequence::mnemonic(title); !own.isEmpty())
            taken += QChar(own[0].key());
    for (qsizetype i = 0; i < titles.size(); ++i)
        buttons_[i]->setText(with_mnemonic(titles[i], taken));
}

void Box::disable_buttons(unsigned which) {
    for (qsizetype i = 0; i < buttons_.size(); ++i)
        buttons_[i]->setEnabled((which >> i & 1) == 0);
}

QPushButton* Box::default_button() const {
    return buttons_.empty() ? nullptr : buttons_.front();
}

std::optional<int> Box::wait() {
    const QPointer<Box> self(this);
    QEventLoop loop;
    loop_ = &loop;
    begin_waiting();
    loop.exec();
    if (self.isNull())
        return std::nullopt;
    loop_ = nullptr;
    is_waiting_ = false;
    return answer_;
}

void Box::wait_whatever_happens() {
    begin_waiting();
    while (is_waiting_)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

void Box::begin_waiting() {
    answer_.reset();
    is_waiting_ = true;
    if (isVisible())
        activateWindow();
    show();
}

void Box::answer(int button) {
    answer_ = button;
    is_waiting_ = false;
    if (loop_ != nullptr)
        loop_->quit();
}

void Box::reject() {
    answer(escape_);
}

void Box::fit() {
    const QSize wanted = sizeHint();
    const int wide = std::max(width(), wanted.width());
    const int high =
        layout()->hasHeightForWidth() ? layout()->totalHeightForWidth(wide) : wanted.height();
    if (!isVisible())
        resize(wide, high);
    else if (wide > width() || high > height())
        resize(wide, std::max(high, height()));
}

QWidget* box_parent() {
    if (QWidget* modal = QApplication::activeModalWidget())
        return modal;
    if (QWidget* active = QApplication::activeWindow())
        return active;
    TaskWindow* task = task_window();
    return task != nullptr && task->isVisible() ? task : nullptr;
}

bool is_accepted(QDialog* box, QSize characters) {
    const QPointer<QDialog> waiting(box);
    const QFontMetrics metrics = box->fontMetrics();
    box->resize(QSize(metrics.averageCharWidth() * characters.width(),
                      metrics.height() * characters.height())
                    .boundedTo(box->screen()->availableSize()));
    return box->exec() == QDialog::Accepted && waiting != nullptr;
}

QStringList to_titles(std::span<const String> titles) {
    QStringList texts;
    for (const String& title : titles)
        texts.push_back(to_qstring(view(title)));
    return texts;
}

QString without_mnemonic(const QString& title) {
    QString plain;
    for (qsizetype i = 0; i < title.size(); ++i) {
        if (title[i] == u'&' && i + 1 < title.size())
            ++i;
        plain += title[i];
    }
    return plain;
}

} // namespace pellux
