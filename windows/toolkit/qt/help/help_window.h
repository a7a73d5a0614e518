#pragma once

#include "windows/toolkit/qt/help/help_words.h"

#include <QMainWindow>
#include <QTemporaryDir>
#include <QUrl>

class QHelpEngine;
class QLabel;
class QLineEdit;
class QListWidget;
class QTabWidget;
class QToolBar;

namespace pellux {

class HelpViewer;

/// The window on one help file: contents, index and search beside the page that is read.
///
/// The help engine keeps what it makes of the file in a temporary directory, which goes with the
/// window. The search reads the pages when it is used first, and runs while the user types.
class HelpWindow : public QMainWindow {
public:
    /// `path` is a help file. The window isn't shown yet.
    explicit HelpWindow(const QString& path);
    ~HelpWindow() override;

    /// False when the engine could not take the file: no page will come.
    [[nodiscard]] bool is_open() const { return engine_ != nullptr; }
    [[nodiscard]] const QString& path() const { return path_; }
    void show_home();
    /// The page of a topic's number, or the first one where the file has none for it.
    void show_topic(int topic);

protected:
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool open_engine();
    QWidget* make_contents();
    QWidget* make_index();
    QWidget* make_search();
    void make_actions();
    void show_icons();
    void make_find_bar();
    void search();
    void preview(const QUrl& page);
    void mark_words();
    void show_hits();
    [[nodiscard]] QUrl page_of_topic(int topic) const;

    QString path_;
    QTemporaryDir directory_;
    QHelpEngine* engine_ = nullptr;
    QTabWidget* tabs_ = nullptr;
    HelpViewer* viewer_ = nullptr;
    QLineEdit* search_field_ = nullptr;
    QLabel* search_state_ = nullptr;
    QListWidget* results_ = nullptr;
    QList<HelpPageText> pages_; ///< empty until something is searched for
    QUrl preview_;              ///< shown by the search, and by nothing else so far
    QToolBar* bar_ = nullptr;
    QToolBar* find_bar_ = nullptr;
    QLineEdit* find_field_ = nullptr;
    QLabel* find_state_ = nullptr;
    QUrl home_;
};

} // namespace pellux
