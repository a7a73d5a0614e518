#include "windows/toolkit/message_box.h"

#include "windows/toolkit/error_line.h"

#include <algorithm>
#include <cassert>
#include <cstdarg>
#include <cstdio>
#include <utility>

namespace pellux {
namespace {

constinit ErrorFilter g_error_filter;

struct KnownType {
    std::string_view extension;
    std::string_view label;
};
constexpr KnownType k_known_types[] = {
    {"bpr", "Projects"}, {"hlp", "Help files"}, {"pla", "PLA files"}, {"vhd", "VHDL files"}};

__attribute__((format(printf, 1, 0))) String formatted(const char* format, std::va_list arguments) {
    std::va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, again);
    va_end(again);
    if (length < 0)
        return format;
    String text(static_cast<std::size_t>(length), '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, arguments);
    return text;
}

void post(QuestionKind kind, String text) {
    Question question;
    question.kind = kind;
    question.text = std::move(text);
    question.buttons = {"OK"};
    static_cast<void>(ask(question));
}

Question file_question(QuestionKind kind, const FileQuestion& asked) {
    Question question;
    question.kind = kind;
    question.title = asked.title;
    question.directory = asked.directory;
    question.value = asked.name;
    question.buttons = {kind == QuestionKind::file_save ? "&Save" : "&Open", "Cancel"};
    if (!asked.extension.empty()) {
        const auto* known =
            std::ranges::find(k_known_types, asked.extension, &KnownType::extension);
        String label(known == std::end(k_known_types) ? asked.extension : known->label);
        if (known == std::end(k_known_types))
            label += " files";
        question.types.push_back({String(asked.extension), std::move(label)});
    }
    question.types.push_back({"", "All files"});
    return question;
}

bool post_file(QuestionKind kind, const FileQuestion& asked, FileChoice& choice) {
    Answer answer = ask(file_question(kind, asked));
    if (answer.button != 0 || answer.value.empty())
        return false;
    choice = {std::move(answer.directory), std::move(answer.value)};
    return true;
}

} // namespace

void xvt_dm_post_note(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    post(QuestionKind::note, formatted(format, arguments));
    va_end(arguments);
}

void xvt_dm_post_warning(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    post(QuestionKind::warning, formatted(format, arguments));
    va_end(arguments);
}

void xvt_dm_post_error(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    post(QuestionKind::error, formatted(format, arguments));
    va_end(arguments);
}

int xvt_dm_post_ask(const char* first, const char* second, const char* third, const char* format,
                    ...) {
    assert(first != nullptr && (second != nullptr || third == nullptr));
    Question question;
    question.kind = QuestionKind::ask;
    for (const char* button : {first, second, third})
        if (button != nullptr)
            question.buttons.emplace_back(button);
    std::va_list arguments;
    va_start(arguments, format);
    question.text = formatted(format, arguments);
    va_end(arguments);
    const int button = ask(question).button;
    return button < static_cast<int>(question.buttons.size()) ? button : k_ask_closed;
}

bool xvt_dm_post_string_prompt(std::string_view text, String& value, int length_max) {
    Question question;
    question.kind = QuestionKind::string;
    question.text = text;
    question.value = value;
    question.length_max = length_max;
    question.buttons = {"OK", "Cancel"};
    Answer answer = ask(question);
    if (answer.button != 0)
        return false;
    value = std::move(answer.value);
    return true;
}

bool xvt_dm_post_file_open(const FileQuestion& question, FileChoice& choice) {
    return post_file(QuestionKind::file_open, question, choice);
}

bool xvt_dm_post_file_save(const FileQuestion& question, FileChoice& choice) {
    return post_file(QuestionKind::file_save, question, choice);
}

bool xvt_dm_post_files_open(const FileQuestion& question, String& directory,
                            Vector<String>& names) {
    Answer answer = ask(file_question(QuestionKind::files_open, question));
    if (answer.button != 0 || answer.files.empty())
        return false;
    directory = std::move(answer.directory);
    names = std::move(answer.files);
    return true;
}

bool xvt_dm_post_font_sel(Font& font) {
    Question question;
    question.kind = QuestionKind::font;
    question.title = "Select font";
    question.font = font;
    question.buttons = {"OK", "Cancel"};
    const Answer answer = ask(question);
    if (answer.button != 0)
        return false;
    font = answer.font;
    return true;
}

void xvt_dm_post_fatal_exit(const char* text) {
    ask_fatal_exit(text);
}

void xvt_errmsg_signal(const ToolkitError& error) {
    if (g_error_filter.takes == nullptr || !g_error_filter.takes(g_error_filter.context, error))
        write_error_line(error.text);
}

void xvt_errmsg_set_filter(const ErrorFilter& filter) {
    g_error_filter = filter;
}

} // namespace pellux
