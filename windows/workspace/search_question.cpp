#include "windows/workspace/search_question.h"

#include "windows/controls/boxes.h"
#include "windows/controls/help_topics.h"
#include "windows/controls/messages.h"
#include "windows/textview/find_dialog.h"
#include "windows/textview/messages.h"
#include "windows/textview/search_settings.h"
#include "windows/textview/text_window.h"
#include "windows/textview/text_windows.h"
#include "windows/toolkit/dialog.h"
#include "windows/workspace/messages.h"

#include <array>

namespace pellux {
namespace {

constexpr int k_dialog = 128;
constexpr int k_text_row = 1;
constexpr int k_case_row = 2;
constexpr int k_word_row = 3;

constexpr std::array k_rows{
    DialogRowResource{k_text_row, DialogRowKind::combo, "&Search for:", k_search_text_max},
    DialogRowResource{k_case_row, DialogRowKind::check, "&Ignore case"},
    DialogRowResource{
        .id = k_word_row, .kind = DialogRowKind::check, .label = "&Whole word", .is_beside = true},
};
constexpr std::array k_buttons{"Search", k_cancel};
constexpr std::array k_dialogs{
    DialogResource{.number = k_dialog,
                   .title = "Search",
                   .rows = k_rows,
                   .buttons = k_buttons,
                   .help_topic = static_cast<int>(HelpTopic::project_search)}};

/// What is selected within a line of the text that was used last; empty: nothing.
String selected_words() {
    TextWindow* front = front_text_window();
    String text = front == nullptr ? String() : text_to_find(*front);
    return text.find('\n') == String::npos ? text : String();
}

} // namespace

void register_search_question() {
    xvt_res_register({.dialogs = k_dialogs});
}

bool ask_for_search(std::string_view title, SearchWords& words) {
    SearchSettings& settings = search_settings();
    const String selected = selected_words();
    Dialog dialog;
    if (!xvt_dlg_create_res(dialog, k_dialog)) {
        post_error(msg_no_dialog);
        return false;
    }
    dialog.title = title;
    const auto row = [&](int id) -> DialogRow& { return *find_row(dialog, id); };
    row(k_text_row).value = selected.empty() ? settings.text : selected;
    row(k_text_row).entries = settings.recent;
    row(k_case_row).selected = settings.ignores_case ? 1 : 0;
    row(k_word_row).selected = settings.whole_word ? 1 : 0;
    for (;;) {
        if (xvt_dlg_ask(dialog) != 0)
            return false;
        words = {.text = row(k_text_row).value,
                 .ignores_case = row(k_case_row).selected != 0,
                 .whole_word = row(k_word_row).selected != 0};
        if (!words.text.empty())
            break;
        xvt_dm_post_note("%s", format_message(msg_no_search_text).c_str());
    }
    settings.text = words.text;
    settings.ignores_case = words.ignores_case;
    settings.whole_word = words.whole_word;
    keep_search_text(view(words.text));
    return true;
}

} // namespace pellux
