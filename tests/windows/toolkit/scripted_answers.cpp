#include "tests/windows/toolkit/scripted_answers.h"

#include "core/common/callback.h"
#include "tests/windows/toolkit/robot.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace pellux {
namespace {

const char* name_of(QuestionKind kind) {
    constexpr const char* k_names[] = {"ask",       "note",       "warning",   "error", "string",
                                       "file_open", "files_open", "file_save", "font",  "dialog"};
    return k_names[static_cast<int>(kind)];
}

/// What a pattern is compared with.
std::string_view subject_of(const Question& question) {
    const bool is_text = question.kind <= QuestionKind::string;
    return view(is_text ? question.text : question.title);
}

bool fits(std::string_view text, std::string_view pattern) {
    const std::size_t star = pattern.find('*');
    if (star == std::string_view::npos)
        return text == pattern;
    if (!text.starts_with(pattern.substr(0, star)))
        return false;
    for (std::size_t i = star; i <= text.size(); ++i)
        if (fits(text.substr(i), pattern.substr(star + 1)))
            return true;
    return false;
}

std::string plain(const String& title) {
    std::string shown(title);
    std::erase(shown, '&');
    return shown;
}

/// The number of the button that is shown with this title; -1 and a failure when there is none.
int find_button(const Question& question, std::string_view title) {
    for (std::size_t i = 0; i < question.buttons.size(); ++i)
        if (plain(question.buttons[i]) == title && (question.disabled_buttons >> i & 1) == 0)
            return static_cast<int>(i);
    for (const DialogRow& row : question.rows)
        if (row.kind == DialogRowKind::button && row.is_enabled && plain(row.label) == title)
            return k_button_rows + row.id;
    ADD_FAILURE() << "no button '" << title << "' in " << describe_question(question);
    return -1;
}

/// Checks one of the radio buttons that stand together.
void check_radio(Vector<DialogRow>& rows, Vector<DialogRow>::iterator row) {
    const auto is_radio = [](const DialogRow& each) { return each.kind == DialogRowKind::radio; };
    auto first = row;
    while (first != rows.begin() && is_radio(*std::prev(first)))
        --first;
    for (; first != rows.end() && is_radio(*first); ++first)
        first->selected = first == row ? 1 : 0;
}

void do_edit(const RowEdit& edit, const Question& question, Vector<DialogRow>& rows) {
    const auto row = std::ranges::find(rows, edit.id, &DialogRow::id);
    bool can = row != rows.end() && row->is_enabled;
    if (can && (row->kind == DialogRowKind::edit || row->kind == DialogRowKind::combo)) {
        can =
            row->length_max == 0 || edit.value.size() <= static_cast<std::size_t>(row->length_max);
        row->value = edit.value;
    } else if (can && row->kind == DialogRowKind::radio) {
        can = edit.selected == 1;
        check_radio(rows, row);
    } else if (can) {
        row->selected = edit.selected;
    }
    EXPECT_TRUE(can) << "no user can do this to row " << edit.id << " of "
                     << describe_question(question);
}

Answer pressed(const Question& question) {
    Answer answer = closed_answer(question);
    answer.button = 0;
    return answer;
}

} // namespace

std::string describe_question(const Question& question) {
    std::string told = name_of(question.kind);
    told += " '" + std::string(question.title) + "': \"" + std::string(question.text) + "\"";
    if (!question.value.empty() || !question.directory.empty())
        told +=
            ", '" + std::string(question.value) + "' in '" + std::string(question.directory) + "'";
    for (const FileType& type : question.types)
        told += ", type " + std::string(type.label) + " '" + std::string(type.extension) + "'";
    for (const DialogRow& row : question.rows)
        told += "\n  row " + std::to_string(row.id) + " '" + std::string(row.label) + "' '" +
                std::string(row.value) + "' " + std::to_string(row.selected) +
                (row.is_enabled ? "" : " disabled");
    told += "\n ";
    for (const String& button : question.buttons)
        told += " [" + plain(button) + "]";
    return told;
}

ScriptedAnswers::ScriptedAnswers() {
    before_ = install_ask({
        .ask =
            [](void* self, const Question& question) {
                return from_context<ScriptedAnswers>(self).on_ask(question);
            },
        .show_dialog =
            [](void* self, const Question& question, bool comes_forward) {
                auto& answers = from_context<ScriptedAnswers>(self);
                answers.dialogs_[question.dialog] = question;
                if (answers.on_screen_ == question.dialog)
                    answers.before_.show_dialog(answers.before_.context, question, comes_forward);
            },
        .fatal_exit =
            [](void* self, const char* text) {
                from_context<ScriptedAnswers>(self).on_fatal_exit(text);
            },
        .end_dialog =
            [](void* self, std::uint64_t dialog) {
                auto& answers = from_context<ScriptedAnswers>(self);
                answers.dialogs_.erase(dialog);
                answers.before_.end_dialog(answers.before_.context, dialog);
            },
        .context = this,
    });
}

ScriptedAnswers::~ScriptedAnswers() {
    install_ask(before_);
    for (const Expected& expected : expected_)
        ADD_FAILURE() << "nobody asked: "
                      << (expected.is_fatal_exit ? "fatal exit" : name_of(expected.kind)) << " \""
                      << expected.pattern << "\"";
}

Answer ScriptedAnswers::on_ask(const Question& question) {
    const bool is_next = !expected_.empty() && !expected_.front().is_fatal_exit &&
                         expected_.front().kind == question.kind &&
                         fits(subject_of(question), expected_.front().pattern);
    if (!is_next) {
        ADD_FAILURE() << "unexpected question: " << describe_question(question)
                      << "\nexpected next: "
                      << (expected_.empty() ? "none" : expected_.front().pattern);
        return closed_answer(question);
    }
    // The reply may lead to further questions.
    const Reply reply = std::move(expected_.front().reply);
    expected_.pop_front();
    if (question.kind == QuestionKind::dialog)
        dialogs_[asked_ = question.dialog] = question;
    return reply(question);
}

/// Does it, and tells the dialog's owner, who may show the dialog anew.
void ScriptedAnswers::edit(std::uint64_t dialog, const RowEdit& edit) {
    Question& question = dialogs_.at(dialog);
    do_edit(edit, question, question.rows);
    const DialogWatcher watcher = question.watcher;
    if (watcher.on_act != nullptr)
        watcher.on_act(watcher.context,
                       {DialogAct::Kind::changed, edit.id, Vector<DialogRow>(question.rows)});
}

const Question* ScriptedAnswers::standing(std::string_view title) const {
    for (const auto& [number, question] : dialogs_)
        if (question.is_modeless && view(question.title) == title)
            return &question;
    return nullptr;
}

const Question& ScriptedAnswers::known(std::string_view title) const {
    static const Question none;
    const Question* found = standing(title);
    EXPECT_NE(found, nullptr) << "no dialog '" << title << "' stands";
    return found == nullptr ? none : *found;
}

void ScriptedAnswers::edit_standing(std::string_view title, const RowEdit& edit) {
    if (const Question& question = known(title); question.dialog != 0)
        this->edit(question.dialog, edit);
}

void ScriptedAnswers::press_standing(std::string_view title, std::string_view button) {
    const Question question = known(title);
    if (const int number = find_button(question, button); number >= 0)
        question.watcher.on_act(question.watcher.context,
                                {DialogAct::Kind::pressed, number, question.rows});
}

void ScriptedAnswers::close_standing(std::string_view title) {
    const Question question = known(title);
    if (question.dialog != 0)
        question.watcher.on_act(question.watcher.context,
                                {DialogAct::Kind::closed, 0, question.rows});
}

void ScriptedAnswers::on_fatal_exit(std::string_view text) {
    if (expected_.empty() || !expected_.front().is_fatal_exit ||
        !fits(text, expected_.front().pattern)) {
        ADD_FAILURE() << "unexpected fatal exit: \"" << text << "\"";
        return;
    }
    expected_.pop_front();
}

void ScriptedAnswers::expect(QuestionKind kind, std::string_view pattern, Reply reply) {
    expected_.push_back({kind, false, std::string(pattern), std::move(reply)});
}

void ScriptedAnswers::expect_ask(std::string_view pattern, std::string_view button) {
    expect(QuestionKind::ask, pattern, [title = std::string(button)](const Question& question) {
        Answer answer;
        answer.button = find_button(question, title);
        return answer;
    });
}

void ScriptedAnswers::expect_note(std::string_view pattern) {
    expect(QuestionKind::note, pattern, pressed);
}

void ScriptedAnswers::expect_error(std::string_view pattern) {
    expect(QuestionKind::error, pattern, pressed);
}

void ScriptedAnswers::expect_files(QuestionKind kind, std::string_view title,
                                   std::string_view directory,
                                   std::initializer_list<std::string_view> names) {
    const Vector<String> files(names.begin(), names.end());
    expect(kind, title, [directory = String(directory), files](const Question& question) {
        Answer answer = pressed(question);
        answer.directory = directory;
        answer.value = files.at(0);
        answer.files = files;
        return answer;
    });
}

void ScriptedAnswers::expect_font(std::string_view title, Font font) {
    expect(QuestionKind::font, title, [font](const Question& question) {
        Answer answer = pressed(question);
        answer.font = font;
        return answer;
    });
}

void ScriptedAnswers::expect_dialog(std::string_view title, std::string_view button,
                                    std::initializer_list<RowEdit> edits) {
    expect(QuestionKind::dialog, title,
           [this, button = std::string(button), edits = std::vector(edits)](const Question& asked) {
               for (const RowEdit& each : edits)
                   edit(asked.dialog, each);
               const Question& question = dialogs_.at(asked.dialog);
               Answer answer = pressed(question);
               answer.button = find_button(question, button);
               return answer;
           });
}

void ScriptedAnswers::expect_on_screen(std::string_view title, std::function<void()> act) {
    expect(QuestionKind::dialog, title, [this, act = std::move(act)](const Question& question) {
        in_box(act);
        on_screen_ = question.dialog;
        Answer answer = before_.ask(before_.context, question);
        on_screen_ = 0;
        return answer;
    });
}

void ScriptedAnswers::expect_closed(QuestionKind kind, std::string_view pattern) {
    expect(kind, pattern, closed_answer);
}

void ScriptedAnswers::expect_fatal_exit(std::string_view pattern) {
    expected_.push_back({QuestionKind::error, true, std::string(pattern), {}});
}

} // namespace pellux
