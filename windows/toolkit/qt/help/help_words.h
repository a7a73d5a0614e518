#pragma once

#include <QList>
#include <QRegularExpression>
#include <QString>
#include <QUrl>

class QHelpEngineCore;

namespace pellux {

/// What the user looks for: beginnings of words, and texts in double quotes that stand as they are.
/// Case does not count. Only letters and figures are compared.
struct HelpWords {
    QList<QRegularExpression> all; ///< a page has each of them
    QRegularExpression marks;      ///< any of them
};
[[nodiscard]] HelpWords parse_help_words(const QString& typed);

/// A page as text.
struct HelpPageText {
    QUrl page;
    QString title;
    QString text;
};
/// The pages of a book; of a very large one, the first.
[[nodiscard]] QList<HelpPageText> read_help_pages(QHelpEngineCore& engine, const QString& book);

struct HelpResult {
    QUrl page;
    QString title;
    int hits = 0;
};
/// The pages with all of the words: first those that have one in their title, then those with most.
[[nodiscard]] QList<HelpResult> search_help(const QList<HelpPageText>& pages,
                                            const HelpWords& words);

} // namespace pellux
