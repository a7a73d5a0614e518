#include "windows/toolkit/qt/help/help_window.h"

#include "windows/toolkit/qt/draw/pictures.h"
#include "windows/toolkit/qt/help/help_viewer.h"
#include "windows/toolkit/resource.h"

#include <QAction>
#include <QDir>
#include <QEvent>
#include <QHelpContentWidget>
#include <QHelpEngine>
#include <QHelpIndexWidget>
#include <QHelpLink>
#include <QHelpSearchEngine>
#include <QHelpSearchResult>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QShortcut>
#include <QSplitter>
#include <QTabBar>
#include <QTabWidget>
#include <QToolBar>
#include <QVBoxLayout>

#include <array>

namespace pellux {
namespace {

constexpr int k_width_px = 900;
constexpr int k_height_px = 640;
constexpr int k_list_width_px = 260;
constexpr int k_results_max = 200;
constexpr int k_home_topic = 1;
constexpr std::array k_looks{ImageLook::normal, ImageLook::disabled};
constexpr int k_icon_px = 20;
constexpr int k_margin_px = 4;

constexpr ImageResource k_back{32501, "back"};
constexpr ImageResource k_forward{32502, "forward"};
constexpr ImageResource k_home{32503, "home"};
constexpr ImageResource k_images[] = {k_back, k_forward, k_home};

/// For a directory of the window's own. A place that does not exist counts as no place: Qt would
/// take the root directory for it.
QString directory_template() {
    const QString place = QDir::tempPath();
    return (place.isEmpty() ? QStringLiteral("/tmp") : place) +
           QLatin1String("/pellux-help-XXXXXX");
}

/// A field above a list.
QWidget* stacked(QWidget* field, QWidget* list, QWidget* below = nullptr) {
    auto* panel = new QWidget;
    auto* column = new QVBoxLayout(panel);
    column->setContentsMargins(k_margin_px, k_margin_px, k_margin_px, k_margin_px);
    column->addWidget(field);
    column->addWidget(list, 1);
    if (below != nullptr)
        column->addWidget(below);
    return panel;
}

} // namespace

HelpWindow::HelpWindow(const QString& path) : path_(path), directory_(directory_template()) {
    setWindowTitle(tr("Pellux Help"));
    setAttribute(Qt::WA_DeleteOnClose);
    xvt_res_register({.images = k_images});
    resize(k_width_px, k_height_px);
    if (!open_engine())
        return;

    auto* middle = new QSplitter(this);
    tabs_ = new QTabWidget(middle);
    viewer_ = new HelpViewer(*engine_, middle);
    tabs_->addTab(make_contents(), tr("&Contents"));
    tabs_->addTab(make_index(), tr("&Index"));
    tabs_->addTab(make_search(), tr("&Search"));
    middle->setSizes({k_list_width_px, k_width_px - k_list_width_px});
    middle->setStretchFactor(0, 0);
    middle->setStretchFactor(1, 1);
    setCentralWidget(middle);
    make_actions();
    make_find_bar();

    home_ = page_of_topic(k_home_topic);
    show_home();
    viewer_->setFocus();
    engine_->searchEngine()->reindexDocumentation();
}

HelpWindow::~HelpWindow() {
    delete takeCentralWidget();
    delete engine_;
}

bool HelpWindow::open_engine() {
    if (!directory_.isValid())
        return false;
    engine_ = new QHelpEngine(directory_.filePath(QStringLiteral("help.qhc")));
    engine_->setReadOnly(false);
    engine_->setUsesFilterEngine(true);
    if (engine_->setupData() && engine_->registerDocumentation(path_))
        return true;
    delete engine_;
    engine_ = nullptr;
    return false;
}

QWidget* HelpWindow::make_contents() {
    QHelpContentWidget* tree = engine_->contentWidget();
    tree->setAccessibleName(tr("Contents"));
    connect(tree, &QHelpContentWidget::linkActivated, viewer_,
            [this](const QUrl& link) { viewer_->setSource(link); });
    connect(tree, &QTreeView::clicked, viewer_, [this](const QModelIndex& at) {
        if (const QHelpContentItem* item = engine_->contentModel()->contentItemAt(at))
            viewer_->setSource(item->url());
    });
    connect(viewer_, &QTextBrowser::sourceChanged, tree, [tree](const QUrl& page) {
        tree->setCurrentIndex(tree->indexOf(page.adjusted(QUrl::RemoveFragment)));
    });
    connect(engine_->contentModel(), &QHelpContentModel::contentsCreated, tree, [this, tree] {
        tree->expandToDepth(0);
        const QModelIndex first = engine_->contentModel()->index(0, 0);
        if (!first.isValid())
            return;
        // A book without the first topic begins with its first page.
        if (home_.isEmpty())
            home_ = engine_->contentModel()->contentItemAt(first)->url();
        if (viewer_->source().isEmpty())
            show_home();
        else
            tree->setCurrentIndex(tree->indexOf(viewer_->source()));
    });
    engine_->contentModel()->createContents({});
    return tree;
}

QWidget* HelpWindow::make_index() {
    auto* field = new QLineEdit;
    field->setPlaceholderText(tr("Keyword"));
    field->setAccessibleName(tr("Keyword"));
    field->setClearButtonEnabled(true);
    QHelpIndexWidget* list = engine_->indexWidget();
    list->setAccessibleName(tr("Keywords"));
    connect(field, &QLineEdit::textChanged, list,
            [list](const QString& text) { list->filterIndices(text); });
    connect(field, &QLineEdit::returnPressed, list, &QHelpIndexWidget::activateCurrentItem);
    connect(list, &QHelpIndexWidget::documentActivated, viewer_,
            [this](const QHelpLink& link) { viewer_->setSource(link.url); });
    connect(list, &QHelpIndexWidget::documentsActivated, viewer_,
            [this](const QList<QHelpLink>& links) {
                auto* choice = new QMenu(this);
                choice->setAttribute(Qt::WA_DeleteOnClose);
                for (const QHelpLink& link : links)
                    choice->addAction(link.title, viewer_,
                                      [this, url = link.url] { viewer_->setSource(url); });
                choice->popup(QCursor::pos());
            });
    engine_->indexModel()->createIndex({});
    QWidget* panel = stacked(field, list);
    panel->setFocusProxy(field);
    return panel;
}

QWidget* HelpWindow::make_search() {
    search_field_ = new QLineEdit;
    search_field_->setPlaceholderText(tr("Words"));
    search_field_->setAccessibleName(tr("Words to search for"));
    search_field_->setClearButtonEnabled(true);
    results_ = new QListWidget;
    results_->setAccessibleName(tr("Pages found"));
    search_state_ = new QLabel;
    search_state_->setWordWrap(true);
    QHelpSearchEngine* searcher = engine_->searchEngine();
    connect(search_field_, &QLineEdit::returnPressed, this, [this] { search(); });
    connect(searcher, &QHelpSearchEngine::indexingFinished, this, [this] {
        is_indexed_ = true;
        if (!search_state_->text().isEmpty())
            search();
    });
    connect(searcher, &QHelpSearchEngine::searchingFinished, this, [this] { list_results(); });
    const auto open_result = [this](const QListWidgetItem* item) {
        viewer_->setSource(item->data(Qt::UserRole).toUrl());
    };
    connect(results_, &QListWidget::itemActivated, viewer_, open_result);
    connect(results_, &QListWidget::itemClicked, viewer_, open_result);
    QWidget* panel = stacked(search_field_, results_, search_state_);
    panel->setFocusProxy(search_field_);
    return panel;
}

void HelpWindow::search() {
    results_->clear();
    search_state_->clear();
    if (search_field_->text().trimmed().isEmpty())
        return;
    search_state_->setText(tr("Searching..."));
    if (is_indexed_)
        engine_->searchEngine()->search(search_field_->text());
}

void HelpWindow::list_results() {
    const auto found = engine_->searchEngine()->searchResults(0, k_results_max);
    for (const QHelpSearchResult& result : found) {
        auto* item = new QListWidgetItem(result.title(), results_);
        item->setData(Qt::UserRole, result.url());
    }
    results_->setCurrentRow(0);
    search_state_->setText(found.isEmpty()     ? tr("No page has these words.")
                           : found.size() == 1 ? tr("One page.")
                                               : tr("%1 pages.").arg(found.size()));
}

void HelpWindow::make_actions() {
    QToolBar* bar = addToolBar(tr("Pages"));
    bar->setMovable(false);
    bar->toggleViewAction()->setVisible(false);
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    bar->setIconSize({k_icon_px, k_icon_px});
    const auto add = [&](const ImageResource& image, const QString& text, QKeySequence key) {
        QAction* action = bar->addAction(text);
        action->setData(image.number);
        action->setShortcut(key);
        action->setToolTip(tr("%1 (%2)").arg(text, key.toString(QKeySequence::NativeText)));
        return action;
    };
    QAction* back = add(k_back, tr("Back"), Qt::ALT | Qt::Key_Left);
    QAction* forward = add(k_forward, tr("Forward"), Qt::ALT | Qt::Key_Right);
    QAction* home = add(k_home, tr("Home"), Qt::ALT | Qt::Key_Home);
    back->setEnabled(false);
    forward->setEnabled(false);
    connect(viewer_, &QTextBrowser::backwardAvailable, back, &QAction::setEnabled);
    connect(viewer_, &QTextBrowser::forwardAvailable, forward, &QAction::setEnabled);
    connect(back, &QAction::triggered, viewer_, &QTextBrowser::backward);
    connect(forward, &QAction::triggered, viewer_, &QTextBrowser::forward);
    connect(home, &QAction::triggered, this, [this] { show_home(); });
    bar_ = bar;
    show_icons();

    const auto on_key = [this](QKeySequence key, auto action) {
        connect(new QShortcut(key, this), &QShortcut::activated, this, action);
    };
    on_key(Qt::CTRL | Qt::Key_W, [this] { close(); });
    on_key(QKeySequence::ZoomIn, [this] { viewer_->zoomIn(); });
    on_key(QKeySequence::ZoomOut, [this] { viewer_->zoomOut(); });
    // A tab chosen by its letter or the pointer takes the keys, too; one reached by an arrow key
    // leaves them to the arrows.
    connect(tabs_, &QTabWidget::currentChanged, this, [this] {
        if (!tabs_->tabBar()->hasFocus())
            tabs_->currentWidget()->setFocus();
    });
}

void HelpWindow::show_icons() {
    for (QAction* action : bar_->actions())
        action->setIcon(
            picture_icon(action->data().toInt(), k_icon_px, devicePixelRatioF(), k_looks));
}

void HelpWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && bar_ != nullptr) {
        forget_pictures();
        show_icons();
    }
}

void HelpWindow::make_find_bar() {
    find_bar_ = new QToolBar(tr("Find in page"), this);
    find_bar_->setMovable(false);
    find_bar_->toggleViewAction()->setVisible(false);
    find_field_ = new QLineEdit(find_bar_);
    find_field_->setPlaceholderText(tr("Find in page"));
    find_field_->setAccessibleName(tr("Find in page"));
    find_field_->setClearButtonEnabled(true);
    find_bar_->addWidget(find_field_);
    addToolBar(Qt::BottomToolBarArea, find_bar_);
    find_bar_->hide();

    connect(find_field_, &QLineEdit::returnPressed, this, [this] { find_in_page(false); });
    const auto on_key = [this](QKeySequence key, QWidget* where, auto action) {
        connect(new QShortcut(key, where, nullptr, nullptr, Qt::WidgetWithChildrenShortcut),
                &QShortcut::activated, this, action);
    };
    on_key(QKeySequence::Find, this, [this] {
        find_bar_->show();
        find_field_->setFocus();
        find_field_->selectAll();
    });
    on_key(QKeySequence::FindNext, this, [this] { find_in_page(false); });
    on_key(QKeySequence::FindPrevious, this, [this] { find_in_page(true); });
    on_key(Qt::Key_Escape, find_bar_, [this] {
        find_bar_->hide();
        viewer_->setFocus();
    });
}

void HelpWindow::find_in_page(bool backwards) {
    const QString text = find_field_->text();
    if (text.isEmpty())
        return;
    const auto flags = backwards ? QTextDocument::FindBackward : QTextDocument::FindFlags();
    if (viewer_->find(text, flags))
        return;
    // Round the end of the page, back to where it was when the text is nowhere.
    const QTextCursor before = viewer_->textCursor();
    viewer_->moveCursor(backwards ? QTextCursor::End : QTextCursor::Start);
    if (!viewer_->find(text, flags))
        viewer_->setTextCursor(before);
}

QUrl HelpWindow::page_of_topic(int topic) const {
    const auto links = engine_->documentsForIdentifier(QStringLiteral("topic-%1").arg(topic));
    return links.isEmpty() ? QUrl() : links.first().url;
}

void HelpWindow::show_home() {
    if (!home_.isEmpty())
        viewer_->setSource(home_);
}

void HelpWindow::show_topic(int topic) {
    const QUrl page = page_of_topic(topic);
    if (page.isEmpty())
        show_home();
    else
        viewer_->setSource(page);
}

} // namespace pellux
