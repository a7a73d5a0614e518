#include "windows/toolkit/qt/help/help_words.h"

#include <QHelpEngineCore>
#include <QStringList>
#include <QTextDocument>

#include <algorithm>

namespace pellux {
namespace {

constexpr qsizetype k_pages_max = 2000;

QRegularExpression pattern(const QStringList& words) {
    return QRegularExpression(QStringLiteral("(?<![\\p{L}\\p{N}])(?:%1)").arg(words.join(u'|')),
                              QRegularExpression::CaseInsensitiveOption);
}

int count_of(const QRegularExpression& words, const QString& text) {
    int count = 0;
    for (auto found = words.globalMatch(text); found.hasNext(); found.next())
        ++count;
    return count;
}

} // namespace

HelpWords parse_help_words(const QString& typed) {
    static const QRegularExpression word(QStringLiteral("\"([^\"]*)\"?|[^\\s\"]+"));
    static const QRegularExpression between(QStringLiteral("[^\\p{L}\\p{N}]+"));
    HelpWords words;
    QStringList patterns;
    for (auto found = word.globalMatch(typed); found.hasNext();) {
        const QString text = found.next().captured(0);
        const QStringList parts = text.split(between, Qt::SkipEmptyParts);
        if (parts.isEmpty())
            continue;
        const bool is_whole = text.size() > 1 && text.startsWith(u'"') && text.endsWith(u'"');
        // A page's words stand in one paragraph.
        patterns += parts.join(QStringLiteral("[^\\p{L}\\p{N}\\n]+")) +
                    (is_whole ? QStringLiteral("(?![\\p{L}\\p{N}])") : QString());
        words.all += pattern({patterns.last()});
    }
    if (!patterns.isEmpty())
        words.marks = pattern(patterns);
    return words;
}

QList<HelpPageText> read_help_pages(QHelpEngineCore& engine, const QString& book) {
    QList<HelpPageText> pages;
    const auto names = engine.files(book, QStringList(), QStringLiteral("html"));
    for (const QUrl& page : names.mid(0, k_pages_max)) {
        QTextDocument document;
        document.setHtml(QString::fromUtf8(engine.fileData(page)));
        pages.push_back(
            {page, document.metaInformation(QTextDocument::DocumentTitle), document.toPlainText()});
    }
    return pages;
}

QList<HelpResult> search_help(const QList<HelpPageText>& pages, const HelpWords& words) {
    QList<HelpResult> results;
    if (words.all.isEmpty())
        return results;
    for (const HelpPageText& page : pages) {
        const bool has_all =
            std::ranges::all_of(words.all, [&page](const QRegularExpression& word) {
                return word.match(page.text).hasMatch();
            });
        if (has_all)
            results.push_back({page.page, page.title, count_of(words.marks, page.text)});
    }
    std::ranges::stable_sort(results, [&words](const HelpResult& a, const HelpResult& b) {
        const bool in_a = words.marks.match(a.title).hasMatch();
        const bool in_b = words.marks.match(b.title).hasMatch();
        return in_a != in_b ? in_a : a.hits > b.hits;
    });
    return results;
}

} // namespace pellux
