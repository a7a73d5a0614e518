#include "windows/toolkit/qt/help/help_viewer.h"

#include <QEvent>
#include <QHelpEngineCore>
#include <QScrollBar>

#include <algorithm>

namespace pellux {
namespace {

constexpr qsizetype k_hits_max = 10'000;

// As of a marker pen, with dark text on it in light and in dark.
constexpr QRgb k_mark = 0xFFFFE082;
constexpr QRgb k_text_on_mark = 0xFF000000;

bool is_of_book(const QUrl& name) {
    return name.scheme() == u"qthelp";
}

} // namespace

HelpViewer::HelpViewer(const QHelpEngineCore& engine, QWidget* parent)
    : QTextBrowser(parent), engine_(engine) {
    setObjectName(QStringLiteral("help_page"));
    setAccessibleName(tr("Page"));
    setOpenExternalLinks(false);
}

QVariant HelpViewer::loadResource(int, const QUrl& name) {
    const QUrl whole = name.isRelative() ? source().resolved(name) : name;
    return is_of_book(whole) ? QVariant(engine_.fileData(whole)) : QVariant(QByteArray());
}

void HelpViewer::doSetSource(const QUrl& page, QTextDocument::ResourceType type) {
    const QUrl whole = page.isRelative() ? source().resolved(page) : page;
    if (!is_of_book(whole) || engine_.fileData(whole.adjusted(QUrl::RemoveFragment)).isEmpty())
        return;
    QTextBrowser::doSetSource(whole, type);
    find_hits();
    if (!hits_.isEmpty() && !page.hasFragment())
        show_hit(0);
}

void HelpViewer::mark(const QRegularExpression& words) {
    if (words_ == words)
        return;
    words_ = words;
    const int from = textCursor().selectionStart();
    find_hits();
    const auto next = std::ranges::find_if(
        hits_, [from](const QTextCursor& hit) { return hit.selectionStart() >= from; });
    if (!hits_.isEmpty())
        show_hit(next == hits_.end() ? 0 : next - hits_.begin());
}

void HelpViewer::find_hits() {
    QList<QTextEdit::ExtraSelection> marks;
    hits_.clear();
    hit_ = 0;
    QTextCharFormat pen;
    pen.setBackground(QColor(k_mark));
    pen.setForeground(QColor(k_text_on_mark));
    QTextCursor found(document());
    while (!words_.pattern().isEmpty() && hits_.size() < k_hits_max) {
        found = document()->find(words_, found);
        if (found.isNull())
            break;
        hits_.push_back(found);
        marks.push_back({found, pen});
    }
    setExtraSelections(marks);
    // The page stays where it is when the last hit is no longer one.
    if (hits_.isEmpty() && textCursor().hasSelection()) {
        const int scrolled = verticalScrollBar()->value();
        QTextCursor cursor = textCursor();
        cursor.clearSelection();
        setTextCursor(cursor);
        verticalScrollBar()->setValue(scrolled);
    }
    if (on_hits)
        on_hits();
}

void HelpViewer::show_hit(qsizetype hit) {
    hit_ = hit;
    setTextCursor(hits_[hit]);
    if (on_hits)
        on_hits();
}

void HelpViewer::step_hit(bool backwards) {
    if (const qsizetype count = hits_.size(); count > 0)
        show_hit((hit_ + (backwards ? count - 1 : 1)) % count);
}

QString HelpViewer::hit_text() const {
    return words_.pattern().isEmpty() ? QString()
           : hits_.isEmpty()          ? tr("No hit")
                                      : tr("Hit %1 of %2").arg(hit_ + 1).arg(hits_.size());
}

void HelpViewer::changeEvent(QEvent* event) {
    QTextBrowser::changeEvent(event);
    // The colour of links is taken when a page is read.
    if (event->type() == QEvent::PaletteChange && source().isValid())
        reload();
}

} // namespace pellux
