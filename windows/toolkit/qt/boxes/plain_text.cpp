#include "windows/toolkit/qt/boxes/plain_text.h"

#include <QEvent>
#include <QScreen>
#include <QScrollBar>

#include <algorithm>
#include <cmath>
#include <memory>

namespace pellux {
namespace {

constexpr int k_characters_wide = 64;

int height_max(const QWidget& widget) {
    return widget.screen()->availableGeometry().height() / 2;
}

} // namespace

PlainText::PlainText(const QString& text) {
    setReadOnly(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse);
    setAcceptRichText(false);
    setFrameShape(NoFrame);
    setTabChangesFocus(true);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    document()->setDocumentMargin(0);
    viewport()->setAutoFillBackground(false);
    viewport()->setCursor(Qt::ArrowCursor);
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    set_text(text);
}

void PlainText::set_text(const QString& text) {
    if (toPlainText() == text && !text.isEmpty())
        return;
    setPlainText(text);
    setAccessibleName(text);
    const bool scrolls = full_height(text_width()) > height_max(*this);
    setVerticalScrollBarPolicy(scrolls ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff);
    // What can't be seen whole is reached by the keyboard too.
    setFocusPolicy(scrolls ? Qt::StrongFocus : Qt::ClickFocus);
    updateGeometry();
}

QSize PlainText::sizeHint() const {
    const int text = text_width();
    const bool scrolls = verticalScrollBarPolicy() == Qt::ScrollBarAsNeeded;
    return {text + (scrolls ? verticalScrollBar()->sizeHint().width() : 0), heightForWidth(text)};
}

int PlainText::text_width() const {
    const int width_max = fontMetrics().averageCharWidth() * k_characters_wide;
    const std::unique_ptr<QTextDocument> copy(document()->clone());
    copy->setTextWidth(-1);
    // A pixel more than the text, so that rounding never breaks its longest line.
    return std::min(width_max, static_cast<int>(std::ceil(copy->idealWidth())) + 1);
}

QSize PlainText::minimumSizeHint() const {
    return {std::min(sizeHint().width(), fontMetrics().averageCharWidth() * 20),
            fontMetrics().lineSpacing()};
}

int PlainText::heightForWidth(int width) const {
    return std::min(full_height(width), height_max(*this));
}

int PlainText::full_height(int width) const {
    const std::unique_ptr<QTextDocument> copy(document()->clone());
    copy->setTextWidth(width);
    return static_cast<int>(std::ceil(copy->size().height()));
}

void PlainText::changeEvent(QEvent* event) {
    QTextEdit::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        updateGeometry();
}

} // namespace pellux
