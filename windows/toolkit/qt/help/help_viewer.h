#pragma once

#include <QList>
#include <QRegularExpression>
#include <QTextBrowser>

#include <functional>

class QHelpEngineCore;

namespace pellux {

/// Shows pages of a help engine, and nothing that lies elsewhere.
///
/// Words that are looked for are marked in each page that is shown; one of these hits is the
/// present one, which is selected and in sight.
class HelpViewer : public QTextBrowser {
public:
    /// The engine is borrowed and outlives the viewer.
    HelpViewer(const QHelpEngineCore& engine, QWidget* parent);

    QVariant loadResource(int type, const QUrl& name) override;

    /// An empty pattern marks nothing. The present hit is the first from where the one before was.
    void mark(const QRegularExpression& words);
    /// To the next hit or the one before, round the ends of the page.
    void step_hit(bool backwards);
    /// "Hit 2 of 7"; empty when nothing is looked for.
    [[nodiscard]] QString hit_text() const;
    /// Called after each change of the hits.
    std::function<void()> on_hits;

protected:
    void doSetSource(const QUrl& page, QTextDocument::ResourceType type) override;
    void changeEvent(QEvent* event) override;

private:
    void find_hits();
    void show_hit(qsizetype hit);

    const QHelpEngineCore& engine_;
    QRegularExpression words_;
    QList<QTextCursor> hits_;
    qsizetype hit_ = 0;
};

} // namespace pellux
