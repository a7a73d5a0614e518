#pragma once

#include "windows/toolkit/ask.h"

#include <deque>
#include <functional>
#include <initializer_list>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace pellux {

/// What a test's user does to a row of a dialog.
struct RowEdit {
    int id = 0;
    std::string value; ///< of a field with a text
    int selected = -1; ///< of the other kinds
};

/// Stands for the user as long as it lives: the questions that a test expects, in their order, with
/// the answers to them.
///
/// A question that is not the next one fails the test and is closed; one that never came fails it
/// at the end, and so does an answer that no user could give to a button or an edit field. A
/// pattern is compared with the text of a question, or with the title of a file box, font box or
/// dialog; '*' in it is any text. A modeless dialog is used as long as it stands; nobody waits for
/// it.
class ScriptedAnswers {
public:
    using Reply = std::function<Answer(const Question&)>;

    ScriptedAnswers();
    ~ScriptedAnswers();
    ScriptedAnswers(const ScriptedAnswers&) = delete;
    ScriptedAnswers& operator=(const ScriptedAnswers&) = delete;

    void expect(QuestionKind kind, std::string_view pattern, Reply reply);

    /// Answered by the button of this title, as it is shown.
    void expect_ask(std::string_view pattern, std::string_view button);
    void expect_note(std::string_view pattern);
    void expect_error(std::string_view pattern);
    /// Answered by files of a directory; `kind` is that of a box for files.
    void expect_files(QuestionKind kind, std::string_view title, std::string_view directory,
                      std::initializer_list<std::string_view> names);
    void expect_font(std::string_view title, Font font);
    /// Answered by a button's title, a button row's too, after the edits.
    void expect_dialog(std::string_view title, std::string_view button,
                       std::initializer_list<RowEdit> edits = {});
    /// Asked on the screen, where `act` is what the user does.
    void expect_on_screen(std::string_view title, std::function<void()> act);
    /// What the owner of that dialog shows by now.
    [[nodiscard]] const Question& on_screen() const { return dialogs_.at(on_screen_); }
    /// The user closes the box or presses Escape.
    void expect_closed(QuestionKind kind, std::string_view pattern);
    void expect_fatal_exit(std::string_view pattern);

    /// What a reply to a modal dialog does to it, and what it has become.
    void edit_asked(const RowEdit& row_edit) { edit(asked_, row_edit); }
    [[nodiscard]] const Question& asked() const { return dialogs_.at(asked_); }
    /// The modeless dialog of this title as it looks now; null when there is none.
    [[nodiscard]] const Question* standing(std::string_view title) const;
    void edit_standing(std::string_view title, const RowEdit& edit);
    void press_standing(std::string_view title, std::string_view button);
    /// Escape.
    void close_standing(std::string_view title);

    /// Questions that are still to come.
    [[nodiscard]] std::size_t left() const { return expected_.size(); }

private:
    struct Expected {
        QuestionKind kind = QuestionKind::note;
        bool is_fatal_exit = false;
        std::string pattern;
        Reply reply;
    };

    Answer on_ask(const Question& question);
    void edit(std::uint64_t dialog, const RowEdit& edit);
    [[nodiscard]] const Question& known(std::string_view title) const;
    void on_fatal_exit(std::string_view text);

    std::uint64_t asked_ = 0; ///< the dialog asked last
    std::deque<Expected> expected_;
    std::map<std::uint64_t, Question> dialogs_; ///< that are asked or stand
    AskSeam before_;
    std::uint64_t on_screen_ = 0; ///< the dialog that a box shows
};

/// All that a question says, for the messages of failing tests.
[[nodiscard]] std::string describe_question(const Question& question);

} // namespace pellux
