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
#include <QKeyEvent>
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
constexpr int k_home_topic = 1;
constexpr int k_own_topic = 80;
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
    viewer_->on_hits = [this] { show_hits(); };

    home_ = page_of_topic(k_home_topic);
    show_home();
    viewer_->setFocus();
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
    search_field_->installEventFilter(this);
    connect(search_field_, &QLineEdit::textChanged, this, [this] { search(); });
    connect(results_, &QListWidget::currentItemChanged, this, [this](const QListWidgetItem* item) {
        if (item != nullptr)
            preview(item->data(Qt::UserRole).toUrl());
    });
    // A result that the user chose is a page that "Back" comes back to.
    const auto choose = [this] {
        preview_.clear();
        viewer_->setFocus();
    };
    connect(results_, &QListWidget::itemActivated, this, choose);
    connect(results_, &QListWidget::itemClicked, this, choose);
    QWidget* panel = stacked(search_field_, results_, search_state_);
    panel->setFocusProxy(search_field_);
    return panel;
}

void HelpWindow::search() {
    if (pages_.isEmpty())
        pages_ = read_help_pages(*engine_, QHelpEngineCore::namespaceName(path_));
    mark_words();
    results_->clear();
    for (const HelpResult& result : search_help(pages_, parse_help_words(search_field_->text()))) {
        auto* item =
            new QListWidgetItem(tr("%1 (%2)").arg(result.title).arg(result.hits), results_);
        item->setData(Qt::UserRole, result.page);
    }
    results_->setCurrentRow(0);
    show_hits();
}

/// Shows a result in place of the one before, so that typing leaves one page behind to go back to.
void HelpWindow::preview(const QUrl& page) {
    if (viewer_->source() == page)
        return;
    if (!preview_.isEmpty() && viewer_->source() == preview_)
        viewer_->backward();
    preview_ = viewer_->source() == page ? QUrl() : page;
    viewer_->setSource(page);
}

/// What the user looks for now: the text of the bar below while that is there, else the words of
/// the search while its list is there.
void HelpWindow::mark_words() {
    if (!find_bar_->isHidden())
        viewer_->mark(QRegularExpression(QRegularExpression::escape(find_field_->text()),
                                         QRegularExpression::CaseInsensitiveOption));
    else if (search_field_->parentWidget() == tabs_->currentWidget())
        viewer_->mark(parse_help_words(search_field_->text()).marks);
    else
        viewer_->mark(QRegularExpression());
}

void HelpWindow::show_hits() {
    find_state_->setText(viewer_->hit_text());
    const int count = results_->count();
    QString state = parse_help_words(search_field_->text()).all.isEmpty() ? QString()
                    : count == 0 ? tr("No page has these words.")
                    : count == 1 ? tr("One page.")
                                 : tr("%1 pages.").arg(count);
    if (count > 0 && find_bar_->isHidden())
        state += tr(" %1.").arg(viewer_->hit_text());
    search_state_->setText(state);
}

bool HelpWindow::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress)
        return QMainWindow::eventFilter(watched, event);
    const auto& key = static_cast<const QKeyEvent&>(*event);
    if (key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter) {
        viewer_->step_hit(key.modifiers().testFlag(Qt::ShiftModifier));
        return true;
    }
    if (key.key() == Qt::Key_Down && watched == search_field_) {
        results_->setFocus();
        return true;
    }
    return QMainWindow::eventFilter(watched, event);
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
    on_key(Qt::Key_F1, [this] { show_topic(k_own_topic); });
    on_key(Qt::CTRL | Qt::Key_W, [this] { close(); });
    on_key(QKeySequence::ZoomIn, [this] { viewer_->zoomIn(); });
    on_key(QKeySequence::ZoomOut, [this] { viewer_->zoomOut(); });
    // A tab chosen by its letter or the pointer takes the keys, too; one reached by an arrow key
    // leaves them to the arrows.
    connect(tabs_, &QTabWidget::currentChanged, this, [this] {
        mark_words();
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
    find_state_ = new QLabel(find_bar_);
    find_state_->setContentsMargins(k_margin_px, 0, k_margin_px, 0);
    find_bar_->addWidget(find_field_);
    find_bar_->addWidget(find_state_);
    addToolBar(Qt::BottomToolBarArea, find_bar_);
    find_bar_->hide();

    find_field_->installEventFilter(this);
    connect(find_field_, &QLineEdit::textChanged, this, [this] { mark_words(); });
    const auto on_key = [this](QKeySequence key, QWidget* where, auto action) {
        connect(new QShortcut(key, where, nullptr, nullptr, Qt::WidgetWithChildrenShortcut),
                &QShortcut::activated, this, action);
    };
    on_key(QKeySequence::Find, this, [this] {
        find_bar_->show();
        find_field_->setFocus();
        find_field_->selectAll();
        mark_words();
    });
    on_key(QKeySequence::FindNext, this, [this] { viewer_->step_hit(false); });
    on_key(QKeySequence::FindPrevious, this, [this] { viewer_->step_hit(true); });
    on_key(Qt::Key_Escape, find_bar_, [this] {
        find_bar_->hide();
        mark_words();
        viewer_->setFocus();
    });
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
