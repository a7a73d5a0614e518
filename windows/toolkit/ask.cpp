#include "windows/toolkit/ask.h"

#include "windows/toolkit/error_line.h"

#include <charconv>
#include <utility>

namespace pellux {
namespace {

constinit AskSeam g_seam;

bool is_titled(const String& button, std::string_view title) {
    String shown = button;
    std::erase(shown, '&');
    return view(shown) == title;
}

} // namespace

std::optional<int> number_of(const DialogRow& row) {
    int number = 0;
    const char* const end = row.value.data() + row.value.size();
    const auto read = std::from_chars(row.value.data(), end, number);
    const bool is_read = read.ec == std::errc() && read.ptr == end;
    return is_read && number >= row.least && number <= row.most ? std::optional(number)
                                                                : std::nullopt;
}

AskSeam install_ask(const AskSeam& seam) {
    return std::exchange(g_seam, seam);
}

Answer ask(const Question& question) {
    return g_seam.ask == nullptr ? closed_answer(question) : g_seam.ask(g_seam.context, question);
}

void ask_show_dialog(const Question& question, bool comes_forward) {
    if (g_seam.show_dialog != nullptr)
        g_seam.show_dialog(g_seam.context, question, comes_forward);
}

void ask_fatal_exit(const char* text) {
    if (g_seam.fatal_exit != nullptr)
        g_seam.fatal_exit(g_seam.context, text);
    else
        write_error_line(text);
}

void ask_end_dialog(std::uint64_t dialog) {
    if (g_seam.end_dialog != nullptr)
        g_seam.end_dialog(g_seam.context, dialog);
}

int escape_button(const Question& question) {
    const Vector<String>& buttons = question.buttons;
    for (const std::string_view title : {"Cancel", "No"})
        for (std::size_t i = 0; i < buttons.size(); ++i)
            if (is_titled(buttons[i], title) && (question.closing_is_no || title != "No"))
                return static_cast<int>(i);
    return buttons.size() == 1 ? 0 : -1;
}

Answer closed_answer(const Question& question) {
    Answer answer;
    answer.button = escape_button(question);
    answer.rows = question.rows;
    return answer;
}

} // namespace pellux
