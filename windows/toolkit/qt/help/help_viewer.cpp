#include "windows/toolkit/qt/help/help_viewer.h"

#include <QEvent>
#include <QHelpEngineCore>

namespace pellux {
namespace {

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
    if (is_of_book(whole) && !engine_.fileData(whole.adjusted(QUrl::RemoveFragment)).isEmpty())
        QTextBrowser::doSetSource(whole, type);
}

void HelpViewer::changeEvent(QEvent* event) {
    QTextBrowser::changeEvent(event);
    // The colour of links is taken when a page is read.
    if (event->type() == QEvent::PaletteChange && source().isValid())
        reload();
}

} // namespace pellux
