#include "windows/toolkit/help.h"

#include "tests/support/temporary_directory.h"
#include "tests/windows/toolkit/application.h"
#include "tests/windows/toolkit/event_log.h"
#include "tests/windows/toolkit/robot.h"
#include "windows/toolkit/dialog.h"
#include "windows/toolkit/resource.h"
#include "windows/toolkit/window.h"

#include <QApplication>
#include <QHelpIndexWidget>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMainWindow>
#include <QRegularExpression>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTabWidget>
#include <QTest>
#include <QTextBrowser>
#include <QWindow>

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace pellux {
namespace {

using test::TemporaryDirectory;

const std::string k_directory = PELLUX_BINARY_DIR "/velmora/bin";
const std::string k_path = k_directory + "/pellux.hlp";

/// A database of its own making; the bytes of its file.
std::string database_of(const std::vector<const char*>& commands) {
    const TemporaryDirectory place;
    {
        auto database = QSqlDatabase::addDatabase("QSQLITE", "made");
        database.setDatabaseName(QString::fromStdString(place.path("made")));
        EXPECT_TRUE(database.open());
        QSqlQuery query(database);
        for (const char* command : commands)
            EXPECT_TRUE(query.exec(command)) << command;
    }
    QSqlDatabase::removeDatabase("made");
    return place.read("made");
}

/// All temporary files of the program go there for a while.
struct ScopedTemporaries {
    TemporaryDirectory place;
    test::ScopedVariable variable{"TMPDIR", place.path().c_str()};
};

void expect_refused(const std::string& directory, const std::string& what) {
    EXPECT_EQ(xvt_help_open_helpfile(directory, "book"), HelpFile::none) << what;
    EXPECT_FALSE(xvt_help_show_contents(directory + "/book.hlp")) << what;
    const HelpFile later = xvt_help_open_helpfile(directory, "book", HelpCheck::when_shown);
    EXPECT_FALSE(xvt_help_process_event(later, Window::none, Event{HelpEvent{.topic = 1}})) << what;
    xvt_help_close_helpfile(later);
}

TEST(HelpFile, ThatIsNoneIsRefusedAndLeavesNothing) {
    const TemporaryDirectory books;
    const std::vector<const char*> tables = {
        "CREATE TABLE FolderTable(Id)",   "CREATE TABLE FileNameTable(Id)",
        "CREATE TABLE FileDataTable(Id)", "CREATE TABLE ContentsTable(Id)",
        "CREATE TABLE IndexTable(Id)",
    };
    const ScopedTemporaries temporaries;
    expect_refused(books.path("nowhere"), "missing directory");
    expect_refused(std::string(5000, 'x'), "long path");

    std::filesystem::copy(k_path, books.path("book.hlp"));
    const std::string whole = books.read("book.hlp");
    ASSERT_GT(whole.size(), 100u);
    const auto changed = [&whole](std::size_t at, std::string_view bytes) {
        return std::string(whole).replace(at, bytes.size(), bytes);
    };
    const auto with = [&tables](std::vector<const char*> more) {
        more.insert(more.begin(), tables.begin(), tables.end());
        return database_of(more);
    };
    const struct {
        const char* what;
        std::string bytes;
    } rows[] = {
        {"empty", ""},
        {"text", std::string(whole.size(), 'x')},
        {"head alone", whole.substr(0, 100)},
        {"cut", whole.substr(0, whole.size() - 1)},
        {"page count of more than there is", changed(28, "\xFF\xFF\xFF\xFF")},
        {"a journal mode with files beside", changed(18, "\2\2")},
        {"a page gone that no look needs", changed(8192, std::string(4096, '\xFF'))},
        {"a name and no book", database_of({"CREATE TABLE NamespaceTable(Name)",
                                            "INSERT INTO NamespaceTable VALUES('x')"})},
        {"no name", with({"CREATE TABLE NamespaceTable(Name)"})},
        {"a name that never ends",
         with({"CREATE VIEW NamespaceTable AS WITH RECURSIVE c(Name) AS (SELECT 1 UNION ALL SELECT "
               "Name FROM c) SELECT max(Name) AS Name FROM c"})},
    };
    for (const auto& row : rows) {
        books.write("book.hlp", row.bytes);
        expect_refused(books.path(), row.what);
    }
    std::filesystem::resize_file(books.path("book.hlp"), std::uintmax_t{1} << 40);
    expect_refused(books.path(), "huge");
    EXPECT_EQ(books.names(), std::set<std::string>{"book.hlp"});
    EXPECT_EQ(temporaries.place.names(), std::set<std::string>{});
}

QMainWindow* help_window() {
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (widget->windowTitle().startsWith("Pellux Help"))
            return qobject_cast<QMainWindow*>(widget);
    }
    return nullptr;
}

TEST(HelpSystem, ShowsThePageOfTheClosestSubject) {
    const ScopedTemporaries temporaries;
    in_application([&temporaries] {
        // A window in the task window; both, a control and commands have their topics.
        const Window window = xvt_win_create_res(k_test_window, {});
        const HelpFile file = xvt_help_open_helpfile(k_directory, "pellux");
        ASSERT_NE(file, HelpFile::none);
        EXPECT_EQ(temporaries.place.names(), std::set<std::string>{}) << "no window, no files";
        const auto ask = [file](Window about, const HelpEvent& event) {
            EXPECT_TRUE(xvt_help_process_event(file, about, Event{event}));
            return shown_help_page();
        };
        EXPECT_EQ(ask(window, {}), "index.html");
        xvt_help_associate(file, {.window = xvt_win_get_task()}, 20);
        xvt_help_associate(file, {.window = window, .control = 5}, 31);
        xvt_help_associate(file, {.command = 9}, 50);
        xvt_help_associate(file, {.window = window, .command = 8}, 60);
        EXPECT_EQ(ask(window, {}), "projects.html");
        xvt_help_associate(file, {.window = window}, 21);
        EXPECT_EQ(ask(window, {}), "windows.html#new");
        EXPECT_EQ(ask(window, {.control = 6}), "windows.html#new");
        EXPECT_EQ(ask(window, {.control = 5}), "messages.html");
        EXPECT_EQ(ask(xvt_win_get_task(), {.control = 5}), "projects.html");
        EXPECT_EQ(ask(window, {.control = 5, .command = 9}), "keys.html");
        EXPECT_EQ(ask(window, {.command = 8}), "command_line.html");
        EXPECT_EQ(ask(window, {.topic = 70, .command = 9}), "settings.html");
        EXPECT_EQ(ask(Window::none, {}), "index.html");
        EXPECT_EQ(ask(window, {.topic = 999}), "index.html");
        xvt_help_associate(file, {.window = window, .control = 5}, 40);
        EXPECT_EQ(ask(window, {.control = 5}), "tools.html");

        for (const Event& other : {Event{CommandEvent{9}}, Event{CloseEvent{}}})
            EXPECT_FALSE(xvt_help_process_event(file, window, other));
        EXPECT_FALSE(xvt_help_process_event(HelpFile::none, window, Event{HelpEvent{}}));
        xvt_help_close_helpfile(file);
        EXPECT_EQ(help_window(), nullptr);
        EXPECT_FALSE(xvt_help_process_event(file, window, Event{HelpEvent{}}));
        EXPECT_TRUE(xvt_help_show_contents(k_path));
        EXPECT_EQ(shown_help_page(), "index.html");
    });
    EXPECT_EQ(help_window(), nullptr) << "the application took it down";
    EXPECT_EQ(temporaries.place.names(), std::set<std::string>{});
}

TEST(HelpSystem, ADialogsPageIsReadBesideIt) {
    static constexpr DialogResource k_dialog{
        .number = 7802, .title = "A dialog", .rows = {}, .buttons = {}, .help_topic = 50};
    const ScopedTemporaries temporaries;
    xvt_res_register({.dialogs = {&k_dialog, 1}});
    HelpFile file = HelpFile::none;
    const EventHandler task{[](void* context, Window window, const Event& event) -> long {
                                return static_cast<long>(xvt_help_process_event(
                                    *static_cast<HelpFile*>(context), window, event));
                            },
                            &file};
    in_application(
        [&file] {
            file = xvt_help_open_helpfile(k_directory, "pellux");
            EXPECT_TRUE(xvt_help_show_contents(k_path));
            Dialog dialog;
            ASSERT_TRUE(xvt_dlg_create_res(dialog, k_dialog.number));
            in_box([] {
                press_key("F1");
                EXPECT_EQ(shown_help_page(), "keys.html");
                QTest::keyClick(help_window()->windowHandle(), Qt::Key_W, Qt::ControlModifier);
                process_events();
                EXPECT_EQ(help_window(), nullptr) << "keys reach it";
                press_key("F1");
                press_key("Esc");
            });
            EXPECT_EQ(xvt_dlg_ask(dialog), -1);
            QTest::keyClick(help_window()->windowHandle(), Qt::Key_Home, Qt::AltModifier);
            EXPECT_EQ(shown_help_page(), "index.html");
            xvt_help_close_helpfile(file);
        },
        {}, task);
}

TEST(HelpWindow, IsReadWithKeysAlone) {
    const ScopedTemporaries temporaries;
    in_application([&temporaries] {
        ASSERT_TRUE(xvt_help_show_contents(k_path));
        QMainWindow* window = help_window();
        auto* tabs = window->findChild<QTabWidget*>();
        process_events();

        press_key("Tab");
        press_key("Return");
        EXPECT_EQ(shown_help_page(), "starting.html") << "the first link";
        press_key("Alt+Left");
        EXPECT_EQ(shown_help_page(), "index.html");
        press_key("Alt+Right");
        EXPECT_EQ(shown_help_page(), "starting.html");

        EXPECT_TRUE(QTest::qWaitFor(
            [&] { return window->findChild<QHelpIndexWidget*>()->model()->rowCount() > 0; },
            60'000));
        press_key("Alt+I");
        type_text("exit");
        press_key("Return");
        EXPECT_EQ(shown_help_page(), "messages.html");

        // The search runs while one types: the best page is shown with its hits marked.
        auto* viewer = window->findChild<QTextBrowser*>();
        press_key("Alt+Home");
        press_key("Alt+S");
        auto* panel = tabs->currentWidget();
        // The book changes, so that its numbers stand for what they must agree with.
        const auto shown = [&] {
            const QString marks = QString::number(viewer->extraSelections().size());
            QString state = panel->findChild<QLabel*>()->text();
            state.replace(" of " + marks, " of all").replace(QRegularExpression("^\\d+"), "Some");
            return shown_help_page() + " '" + viewer->textCursor().selectedText().toStdString() +
                   "' " + state.toStdString();
        };
        const std::pair<const char*, const char*> rows[] = {
            {"waveform gtkw", "tools.html 'Waveform' One page. Hit 1 of all."},
            {"\"First Steps\"", "index.html 'First steps' One page. Hit 1 of all."},
            {"vhdl.msg", "messages.html 'vhdl.msg' One page. Hit 1 of all."},
            {"starting", "starting.html 'Starting' Some pages. Hit 1 of all."},
            {"startingx", "starting.html '' No page has these words."},
            {"\" * -", "starting.html '' "},
            {"compil", "compile_window.html 'compil' Some pages. Hit 1 of all."},
        };
        for (const auto& [typed, expected] : rows) {
            panel->findChild<QLineEdit*>()->clear();
            type_text(typed);
            EXPECT_EQ(shown(), expected) << typed;
        }
        const int first = viewer->textCursor().position();
        for (const char* key : {"Return", "F3", "Shift+F3", "Shift+Return"})
            press_key(key);
        EXPECT_EQ(viewer->textCursor().position(), first);
        press_key("Shift+F3");
        const QTextCursor last = viewer->extraSelections().constLast().cursor;
        EXPECT_EQ(viewer->textCursor().position(), last.position()) << "round the end";
        press_key("Down");
        press_key("Down");
        const std::string second = shown_help_page();
        EXPECT_NE(second, "compile_window.html");
        press_key("Return");
        EXPECT_TRUE(viewer->hasFocus());

        press_key("Ctrl+F");
        type_text("no such text");
        press_key("Alt+Left");
        EXPECT_EQ(shown(), "index.html '' Some pages.") << "typing left one page behind";
        press_key("Alt+Right");
        press_key("Esc");
        press_key("Alt+C");
        EXPECT_TRUE(viewer->extraSelections().isEmpty() && !viewer->textCursor().hasSelection());

        viewer->setSource(QUrl("file:///etc/hostname"));
        viewer->setSource(QUrl("nowhere.html"));
        EXPECT_EQ(shown_help_page(), second) << "a page of the book or none";

        press_key("Alt+Home");
        EXPECT_EQ(shown_help_page(), "index.html");
        press_key("Ctrl+W");
        EXPECT_EQ(help_window(), nullptr);
        EXPECT_EQ(temporaries.place.names(), std::set<std::string>{});
    });
}

} // namespace
} // namespace pellux
