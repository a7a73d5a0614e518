#include "core/os/environment.h"
#include "core/os/files.h"
#include "core/os/loop.h"
#include "tests/support/temporary_directory.h"
#include "tests/windows/toolkit/application.h"
#include "tests/windows/toolkit/robot.h"
#include "tests/windows/toolkit/scripted_answers.h"
#include "windows/toolkit/dialog.h"
#include "windows/toolkit/message_box.h"
#include "windows/toolkit/resource.h"
#include "windows/toolkit/window.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QDialog>
#include <QFileSystemModel>
#include <QLineEdit>
#include <QListView>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QTest>
#include <QTextEdit>
#include <QTimer>

#include <functional>
#include <memory>
#include <set>
#include <string>

namespace pellux {
namespace {

/// What the user does to the box that is asked next.
void at_box(const std::function<void(QDialog&)>& act) {
    QTimer::singleShot(0, qApp, [act] {
        auto* box = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(box, nullptr);
        EXPECT_TRUE(QTest::qWaitFor([box] { return QApplication::activeWindow() == box; }));
        act(*box);
    });
}

void at_box_press(const char* key) {
    at_box([key](QDialog&) { press_key(key); });
}

QString plain_title(const QAbstractButton& button) {
    return button.text().remove(u'&');
}

QAbstractButton* button_of(const QDialog& box, const char* title) {
    for (auto* button : box.findChildren<QAbstractButton*>())
        if (plain_title(*button) == QString(title).remove(u'&'))
            return button;
    return nullptr;
}

/// Changes a check box or radio button by its mnemonic.
void toggle(const QDialog& box, const char* title, const char* mnemonic) {
    const QAbstractButton* button = button_of(box, title);
    ASSERT_NE(button, nullptr);
    const bool was_checked = button->isChecked();
    press_key(mnemonic);
    EXPECT_TRUE(QTest::qWaitFor([=] { return button->isChecked() != was_checked; }));
}

constexpr DialogRowResource k_rows[] = {
    {1, DialogRowKind::text, "Where & how <b>?"},
    {2, DialogRowKind::edit, "&Name:", 5},
    {3, DialogRowKind::button, "&More..."},
    {4, DialogRowKind::list, "&List:"},
    {5, DialogRowKind::check, "&Check"},
    {6, DialogRowKind::radio, "&One"},
    {7, DialogRowKind::radio, "&Two"},
    {8, DialogRowKind::edit, "&Fixed:"},
    {9, DialogRowKind::combo, "&Entry:", 9},
};
constexpr const char* k_buttons[] = {"OK", "Cancel"};
constexpr DialogResource k_dialogs[] = {{7101, "All rows", k_rows, k_buttons}};
const bool k_is_registered = [] {
    xvt_res_register({.dialogs = k_dialogs});
    return true;
}();

Question question_with(std::initializer_list<const char*> buttons) {
    Question question;
    question.kind = QuestionKind::ask;
    question.text = "?";
    question.buttons.assign(buttons.begin(), buttons.end());
    return question;
}

TEST(ScriptedAnswers, FailOnAQuestionTooManyOrTooFew) {
    int answer = -2;
    EXPECT_NONFATAL_FAILURE(
        {
            const ScriptedAnswers answers;
            answer = xvt_dm_post_ask("OK", "Cancel", nullptr, "Quit %s?", "Pellux");
        },
        "unexpected question: ask '': \"Quit Pellux?\"\n  [OK] [Cancel]");
    EXPECT_EQ(answer, 1);
    EXPECT_NONFATAL_FAILURE(
        {
            ScriptedAnswers answers;
            answers.expect_note("late");
        },
        "nobody asked: note \"late\"");
}

TEST(Questions, HoldWhatWasAskedFor) {
    ScriptedAnswers answers;
    const std::string name(100000, 'n');
    answers.expect_error("'" + name + "'");
    xvt_dm_post_error("'%s'", name.c_str());
    FileChoice choice;
    answers.expect(QuestionKind::file_open, "Open...", [](const Question& question) {
        EXPECT_EQ(describe_question(question),
                  "file_open 'Open...': \"\", 'x' in '/d', type VHDL files 'vhd', type All files "
                  "''\n  [Open] [Cancel]");
        return closed_answer(question);
    });
    EXPECT_FALSE(xvt_dm_post_file_open({"Open...", "/d", "x", "vhd"}, choice));
    answers.expect_files(QuestionKind::file_save, "Save...", "/d", {""});
    EXPECT_FALSE(xvt_dm_post_file_save({.title = "Save..."}, choice)) << "a file without a name";
    Dialog none;
    EXPECT_FALSE(xvt_dlg_create_res(none, 7199));
    EXPECT_EQ(xvt_dlg_ask(none), -1);
}

TEST(MessageBox, AnswersByKeyAndMnemonicInTheGivenOrder) {
    in_application([] {
        const struct {
            std::initializer_list<const char*> buttons;
            const char* key;
            int answer;
        } rows[] = {
            {{"Cancel", "OK"}, "Return", 0},      {{"Cancel", "OK"}, "Esc", 0},
            {{"Yes", "No", "Cancel"}, "Esc", 2},  {{"Yes", "No"}, "Esc", 1},
            {{"No", "Yes", "&Cancel"}, "Esc", 2}, {{"OK"}, "Esc", 0},
            {{"Retry", "Ignore"}, "Esc", -1},     {{"Yes", "No", "Cancel"}, "Alt+N", 1},
            {{"Cut", "Copy", "C"}, "Alt+O", 1},
        };
        for (const auto& row : rows) {
            at_box([&row](QDialog& box) {
                int right = 0;
                for (const char* title : row.buttons) {
                    const QAbstractButton* button = button_of(box, title);
                    ASSERT_NE(button, nullptr);
                    EXPECT_GE(button->x(), right);
                    right = button->geometry().right();
                }
                EXPECT_NE(box.parentWidget(), nullptr);
                press_key(row.key);
            });
            EXPECT_EQ(ask(question_with(row.buttons)).button, row.answer);
        }
        at_box([](QDialog& box) { box.close(); });
        EXPECT_EQ(ask(question_with({"Yes", "No"})).button, 1);
    });
}

TEST(MessageBox, ShowsAnyTextAsItStands) {
    in_application([] {
        std::string many_lines;
        for (int i = 0; i < 300; ++i)
            many_lines += "line\n";
        for (const std::string& text :
             {std::string("'<b>a</b>&amp;<img src=x>'\nnot found."), std::string(5000, 'w'),
              many_lines, std::string("caf\xC3\xA9 & co"), std::string()}) {
            at_box([&text](QDialog& box) {
                const auto* shown = box.findChild<QTextEdit*>();
                ASSERT_NE(shown, nullptr);
                EXPECT_EQ(shown->toPlainText().toStdString(), text);
                EXPECT_TRUE(shown->textInteractionFlags() & Qt::TextSelectableByMouse);
                const QSize room = box.screen()->availableSize();
                EXPECT_TRUE(room.width() >= box.width() && room.height() >= box.height());
                // All of it can be reached: nothing is cut at the right, and what is too high
                // scrolls.
                EXPECT_LE(shown->document()->idealWidth(), shown->viewport()->width());
                const bool is_whole =
                    shown->document()->size().height() <= shown->viewport()->height() + 1;
                EXPECT_NE(is_whole, shown->verticalScrollBarPolicy() == Qt::ScrollBarAsNeeded);
                press_key("Return");
            });
            xvt_dm_post_note("%s", text.c_str());
        }
    });
}

/// Lets the loop turn a while under the box that is shown next, then presses its button. Its clock
/// is the box's own: others stand still.
class LastBoxUser : public QObject {
public:
    LastBoxUser() { qApp->installEventFilter(this); }
    int turns = 0;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        auto* box = qobject_cast<QDialog*>(watched);
        if (box != nullptr && event->type() == QEvent::Show)
            box->startTimer(1);
        if (box != nullptr && event->type() == QEvent::Timer && ++turns == 20)
            QTest::keyClick(box->focusWidget(), Qt::Key_Return);
        return false;
    }
};

TEST(MessageBox, ServesWithoutATaskWindowAndWhenTheProgramEnds) {
    at_box_press("Return");
    xvt_dm_post_error("No window yet");
    in_application([] {
        at_box([](QDialog&) { xvt_app_destroy(); });
        EXPECT_EQ(ask(question_with({"Yes", "No"})).button, 1);
        // The loop is told to end now; the last box waits all the same, and nothing runs beneath.
        int ticks = 0;
        Timer timer;
        timer.context = &ticks;
        timer.expired = [](void* count) { ++*static_cast<int*>(count); };
        start_timer(timer, 1);
        const LastBoxUser user;
        xvt_dm_post_fatal_exit("Exiting with code -1.");
        EXPECT_EQ(user.turns, 20);
        EXPECT_EQ(ticks, 0);
        stop_timer(timer);
    });
}

TEST(StringPrompt, LimitsBytesAndKeepsWhatWasNotTyped) {
    in_application([] {
        const struct {
            const char* value;
            const char16_t* typed; ///< at the start
            const char* answer;
        } rows[] = {{"12345", u"0", "12345"},
                    {"", u"\u20AC\u00E9x", "\u20AC\u00E9"},
                    {"", u"ab\U0001F600", "ab"},
                    {"a\xFFz", u"", "a\xFFz"}};
        for (const auto& row : rows) {
            at_box([&row](QDialog& box) {
                auto* field = qobject_cast<QLineEdit*>(box.focusWidget());
                EXPECT_EQ(field->accessibleName(), "Go to <line>");
                press_key("Home");
                if (const QString text = QString::fromUtf16(row.typed); !text.isEmpty())
                    field->insert(text);
                press_key("Return");
            });
            String value = row.value;
            EXPECT_TRUE(xvt_dm_post_string_prompt("Go to <line>:", value, 5));
            EXPECT_EQ(value, row.answer);
        }
        at_box_press("Esc");
        String value = "12";
        EXPECT_FALSE(xvt_dm_post_string_prompt("?", value, 5));
        EXPECT_EQ(value, "12");
    });
}

class FileBox : public testing::Test {
protected:
    // The box keeps its own settings there.
    FileBox() { set_environment_variable("XDG_CONFIG_HOME", directory_.path("config").c_str()); }

    std::string ask_one(QuestionKind kind, const char* name,
                        const std::function<void(QDialog&)>& act, std::string in = {}) {
        const std::string start = in.empty() ? directory_.path("files") : in;
        FileChoice choice;
        at_box(act);
        const FileQuestion question{"Open VHDL file...", start, name, "vhd"};
        const bool is_chosen = kind == QuestionKind::file_save
                                   ? xvt_dm_post_file_save(question, choice)
                                   : xvt_dm_post_file_open(question, choice);
        return is_chosen ? std::string(choice.directory + "|" + choice.name) : "cancelled";
    }

    test::TemporaryDirectory directory_;
};

void type_name(QDialog& box, const QString& name) {
    auto* field = box.findChild<QLineEdit*>("fileNameEdit");
    field->selectAll();
    field->insert(name);
    QTest::keyClick(field, Qt::Key_Return);
}

TEST_F(FileBox, OffersTheFilesOfATypeWhateverItsCase) {
    for (const char* name : {"files/a.vhd", "files/B.VHD", "files/c.vhdl", "files/d.txt",
                             "files/<i>e\n.vhd", "files/bad\xFF.vhd", "files/vhd"})
        directory_.write(name, "x");
    in_application([this] {
        const auto shown = [](QDialog& box) {
            QStringList names;
            const auto* list = box.findChild<QListView*>("listView");
            for (int i = 0; i < list->model()->rowCount(list->rootIndex()); ++i)
                names += list->model()->index(i, 0, list->rootIndex()).data().toString();
            names.sort();
            return names;
        };
        const auto act = [&](QDialog& box) {
            EXPECT_EQ(box.windowTitle(), "Open VHDL file...");
            EXPECT_TRUE(QTest::qWaitFor([&] { return shown(box).size() == 3; }));
            EXPECT_EQ(shown(box), QStringList({"<i>e\n.vhd", "B.VHD", "a.vhd"}));
            press_key("Esc");
        };
        EXPECT_EQ(ask_one(QuestionKind::file_open, "", act), "cancelled");
    });
}

TEST_F(FileBox, AnswersTheNameThatWasChosenAndChangesNothing) {
    directory_.write("files/a.vhd", "x");
    directory_.write("files/b.vhd", "x");
    directory_.write("files/sub/c.vhd", "x");
    std::filesystem::create_directory_symlink(directory_.path("files"), directory_.path("link"));
    std::filesystem::create_symlink(directory_.path("files/b.vhd"), directory_.path("files/l.vhd"));
    const std::string files = directory_.path("files") + "|";
    PathBuffer before;
    ASSERT_FALSE(failed(current_directory(before)));
    in_application([&] {
        const auto takes = [](const QString& name) {
            return [name](QDialog& box) { type_name(box, name); };
        };
        const auto enter = [](QDialog& box) {
            QTest::keyClick(box.findChild<QLineEdit*>("fileNameEdit"), Qt::Key_Return);
        };
        const auto open = QuestionKind::file_open;
        const auto save = QuestionKind::file_save;
        EXPECT_EQ(ask_one(open, "", takes("a.vhd")), files + "a.vhd");
        EXPECT_EQ(ask_one(open, "", takes("none.vhd")), files + "none.vhd");
        EXPECT_EQ(ask_one(open, "", takes("l.vhd")), files + "l.vhd") << "a link was followed";
        EXPECT_EQ(ask_one(open, "", takes("sub/../b.vhd")), files + "b.vhd");
        EXPECT_EQ(ask_one(open, "", takes("a.vhd"), directory_.path("link")), files + "a.vhd")
            << "one directory has two names";
        EXPECT_EQ(ask_one(save, "", takes("b.vhd")), files + "b.vhd") << "asks by itself";
        EXPECT_EQ(ask_one(save, "new one.vhd", enter), files + "new one.vhd");
        for (const char* name : {"a\"<b>&.vhd", "\"q\" \"r\"", "100%25.vhd", "a#b?.vhd", " b.vhd ",
                                 "~x.vhd", "$HOME", "b\\c.vhd", "\xC3\xA9.vhd"})
            EXPECT_EQ(ask_one(save, name, enter), files + name);
        // A name that can't be shown is not offered as another one.
        const auto replaces_nothing = [](QDialog& box) {
            EXPECT_EQ(box.findChild<QLineEdit*>("fileNameEdit")->text(), "");
            type_name(box, "good.vhd");
        };
        EXPECT_EQ(ask_one(save, "bad\xFF.vhd", replaces_nothing), files + "good.vhd");
        const std::string here = std::string(before.view()) + "|x.vhd";
        for (const char* nowhere : {"bad\xFF", "missing"})
            EXPECT_EQ(ask_one(save, "x.vhd", enter, directory_.path(nowhere)), here);

        const struct {
            const char* typed;
            const char* told; ///< empty: nothing is missing
            Vector<String> names;
        } rows[] = {
            {"\"a.vhd\" \"l.vhd\"", "", {"a.vhd", "l.vhd"}},
            {"b.vhd", "", {"b.vhd"}},
            {"\"a.vhd\" \"no.vhd\" gone \"l.vhd\"",
             "Can't find file 'no.vhd'.\nCan't find file 'gone'.",
             {"a.vhd", "l.vhd"}},
            {"no.vhd", "Can't find file 'no.vhd'.", {}},
            {"\"sub\" \"\"", "Can't find file 'sub'.", {}},
        };
        for (const auto& row : rows) {
            at_box([&row](QDialog& box) {
                if (*row.told != '\0')
                    at_box([&row](QDialog& message) {
                        EXPECT_EQ(message.findChild<QTextEdit*>()->toPlainText(), row.told);
                        press_key("Return");
                    });
                type_name(box, row.typed);
                if (row.names.empty())
                    press_key("Esc");
            });
            Vector<String> names;
            String where;
            const std::string start = directory_.path("files");
            EXPECT_EQ(xvt_dm_post_files_open({"Add", start, "", "vhd"}, where, names),
                      !row.names.empty());
            EXPECT_EQ(names, row.names) << row.typed;
            EXPECT_EQ(where, row.names.empty() ? "" : start.c_str());
        }
    });
    EXPECT_EQ(before.view(), std::filesystem::current_path().c_str());
    EXPECT_EQ(directory_.names("files"), (std::set<std::string>{"a.vhd", "b.vhd", "l.vhd", "sub"}));
}

TEST(ModalDialog, TakesEveryRowByTheKeyboard) {
    in_application([] {
        Dialog dialog;
        ASSERT_TRUE(xvt_dlg_create_res(dialog, 7101));
        find_row(dialog, 4)->value = "a\n<b>\nc";
        find_row(dialog, 4)->selected = 0;
        find_row(dialog, 6)->selected = 1;
        find_row(dialog, 8)->value = "kept\xFF";
        find_row(dialog, 8)->is_enabled = false;
        find_row(dialog, 9)->entries = {"first", "raw\xE9"};
        // What changes is told, with the rows as they are then; what the owner makes of that is
        // shown.
        std::string changes;
        dialog.calls = {.on_change =
                            [](void* told, Dialog& changed, int row) {
                                auto& text = *static_cast<std::string*>(told);
                                text += std::to_string(row);
                                if (row == 5)
                                    changed.buttons[0] = "&Go";
                                if (row == 9 && find_row(changed, 9)->value == "raw\xE9")
                                    find_row(changed, 8)->value = "seen";
                            },
                        .context = &changes};
        at_box([](QDialog& box) {
            EXPECT_EQ(box.windowTitle(), "All rows");
            EXPECT_EQ(box.findChild<QTextEdit*>()->toPlainText(), "Where & how <b>?");
            EXPECT_EQ(box.focusWidget()->accessibleName(), "Name");
            type_text("abcdefg");
            press_key("Alt+L");
            EXPECT_EQ(box.focusWidget()->accessibleName(), "List");
            press_key("Down");
            toggle(box, "Check", "Alt+C");
            toggle(box, "Two", "Alt+T");
            // The focus goes round through all that can be changed, first to last.
            QStringList round;
            for (int i = 0; i < 8; ++i) {
                press_key("Tab");
                const auto* button = qobject_cast<QAbstractButton*>(box.focusWidget());
                round +=
                    button == nullptr ? box.focusWidget()->accessibleName() : plain_title(*button);
            }
            EXPECT_EQ(round.join(u' '), "Entry Go Cancel Name More... List Check Two");
            press_key("Alt+E");
            type_text("x");
            press_key("Down");
            press_key("Down");
            press_key("Return");
        });
        EXPECT_EQ(xvt_dlg_ask(dialog), 0);
        std::string told;
        for (const DialogRow& row : dialog.rows)
            told += std::string(row.value) + "|" + std::to_string(row.selected) + " ";
        EXPECT_EQ(told, "|0 abcde|0 |0 a\n<b>\nc|1 |1 |0 |1 seen|0 raw\xE9|0 ");
        EXPECT_EQ(changes, "22222457999");
        at_box_press("Esc");
        EXPECT_EQ(xvt_dlg_ask(dialog), 1);
    });
}

TEST(ModalDialog, StaysBetweenItsQuestions) {
    in_application([] {
        QPointer<QDialog> first;
        {
            Dialog dialog;
            ASSERT_TRUE(xvt_dlg_create_res(dialog, 7101));
            at_box([&first](QDialog& box) {
                first = &box;
                type_text("old");
                button_of(box, "More...")->setFocus();
                press_key("Space");
            });
            EXPECT_EQ(xvt_dlg_ask(dialog), k_button_rows + 3);
            ASSERT_TRUE(first);
            EXPECT_TRUE(first->isVisible());
            button_of(*first, "OK")->click();
            // What is asked in between stands over it.
            at_box([&first](QDialog& box) {
                EXPECT_EQ(box.parentWidget(), first);
                press_key("Return");
            });
            xvt_dm_post_note("Busy");
            find_row(dialog, 2)->value = "new";
            find_row(dialog, 3)->label = "&Less";
            at_box([&first](QDialog& box) {
                EXPECT_EQ(&box, first);
                EXPECT_EQ(box.findChild<QLineEdit*>()->text(), "new");
                EXPECT_EQ(box.focusWidget(), button_of(box, "Less"));
                press_key("Esc");
            });
            EXPECT_EQ(xvt_dlg_ask(dialog), 1);
        }
        EXPECT_TRUE(!first || !first->isVisible());
    });
}

/// The user types on in the window while a dialog stands, which tells of everything.
TEST(ModelessDialog, StandsBesideTheWindowsUntilItIsClosed) {
    in_application([] {
        std::string told;
        auto dialog = std::make_unique<Dialog>();
        ASSERT_TRUE(xvt_dlg_create_res(*dialog, 7101));
        dialog->calls = {
            .on_change =
                [](void* context, Dialog& changed, int row) {
                    auto& acts = *static_cast<std::string*>(context);
                    acts += std::to_string(row) + std::string(find_row(changed, 2)->value) + ' ';
                    changed.disabled_buttons = find_row(changed, 2)->value.empty() ? 1 : 0;
                },
            .on_button =
                [](void* context, Dialog& pressed, int button) {
                    *static_cast<std::string*>(context) += "button" + std::to_string(button) + ' ';
                    at_box_press("Return");
                    xvt_dm_post_note("asked from within");
                    if (button == 1)
                        xvt_dlg_close(pressed);
                },
            .on_close = [](void* context, Dialog&,
                           int) { *static_cast<std::string*>(context) += "closed "; },
            .context = &told};
        const auto box = [] {
            for (QWidget* each : QApplication::topLevelWidgets())
                if (each->isVisible() && each->windowTitle() == "All rows")
                    return static_cast<QDialog*>(each);
            return static_cast<QDialog*>(nullptr);
        };
        const auto comes_to_front = [&] {
            xvt_dlg_open(*dialog);
            return QTest::qWaitFor([&] { return QApplication::activeWindow() == box(); });
        };
        ASSERT_TRUE(comes_to_front());
        type_text("ab");
        press_key("Return");
        EXPECT_TRUE(box()->isVisible());
        // The window has the focus, and the dialog is still there.
        QWidget* task = box()->parentWidget();
        task->activateWindow();
        EXPECT_TRUE(QTest::qWaitFor([&] { return QApplication::activeWindow() == task; }));
        find_row(*dialog, 2)->value = "cd";
        xvt_dlg_update(*dialog);
        EXPECT_EQ(box()->findChild<QLineEdit*>()->text(), "cd");
        ASSERT_TRUE(comes_to_front());
        press_key("Delete");
        EXPECT_FALSE(button_of(*box(), "OK")->isEnabled());
        press_key("Esc");
        EXPECT_EQ(box(), nullptr);
        EXPECT_TRUE(QTest::qWaitFor([&] { return QApplication::activeWindow() == task; }));
        EXPECT_FALSE(xvt_dlg_is_open(*dialog));
        ASSERT_TRUE(comes_to_front());
        button_of(*box(), "Cancel")->click();
        EXPECT_EQ(box(), nullptr);
        EXPECT_EQ(told, "2a 2ab button0 2 closed button1 ");
        ASSERT_TRUE(comes_to_front());
        dialog.reset();
        EXPECT_EQ(box(), nullptr);
    });
}

TEST(FontBox, GivesBackTheFontThatItGot) {
    in_application([] {
        for (const char* family : {"courier", "helvetica"})
            for (const int style : {0, 1, 2, 3, 4, 7}) {
                Font font;
                xvt_font_set_family(font, family);
                xvt_font_set_style(font, static_cast<std::uint16_t>(style));
                xvt_font_set_size(font, 13);
                const Font before = font;
                at_box([style](QDialog& box) {
                    const auto* faces = box.findChildren<QListView*>().at(1);
                    const QString face =
                        QStringList{"Book", "Bold", "Oblique", "Bold Oblique"}[style & 3];
                    // A machine with the bare fonts has no slanted ones.
                    if (!faces->model()->match(faces->model()->index(0, 0), 0, face).isEmpty()) {
                        EXPECT_EQ(faces->currentIndex().data().toString(), face) << style;
                    }
                    press_key("Return");
                });
                EXPECT_TRUE(xvt_dm_post_font_sel(font));
                EXPECT_EQ(font, before) << family << ' ' << style;
                at_box([](QDialog& box) {
                    toggle(box, "Underline", "Alt+U");
                    press_key("Return");
                });
                EXPECT_TRUE(xvt_dm_post_font_sel(font));
                EXPECT_EQ(font.style, before.style ^ 4);
                at_box_press("Esc");
                EXPECT_FALSE(xvt_dm_post_font_sel(font));
            }
    });
}

} // namespace
} // namespace pellux
