#pragma once

#include <QTextBrowser>

class QHelpEngineCore;

namespace pellux {

/// Shows pages of a help engine, and nothing that lies elsewhere.
class HelpViewer : public QTextBrowser {
public:
    /// The engine is borrowed and outlives the viewer.
    HelpViewer(const QHelpEngineCore& engine, QWidget* parent);

    QVariant loadResource(int type, const QUrl& name) override;

protected:
    void doSetSource(const QUrl& page, QTextDocument::ResourceType type) override;
    void changeEvent(QEvent* event) override;

private:
    const QHelpEngineCore& engine_;
};

} // namespace pellux
