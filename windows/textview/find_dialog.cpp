#include "windows/textview/find_dialog.h"

#include "core/text/text_characters.h"
#include "windows/controls/boxes.h"
#include "windows/controls/help_topics.h"
#include "windows/controls/messages.h"
#include "windows/textview/find_replace.h"
#include "windows/textview/messages.h"
#include "windows/textview/search_settings.h"
#include "windows/textview/text_window.h"
#include "windows/textview/text_windows.h"
#include "windows/toolkit/dialog.h"
#include "windows/toolkit/resource.h"

#include <array>

namespace pellux {
namespace {

constexpr int k_find_dialog = 121;
constexpr int k_replace_dialog = 122;

enum Row : int { k_text = 1, k_replacement, k_ignores_case, k_whole_word, k_backwards };

constexpr DialogRowResource k_text_row{k_text, DialogRowKind::combo,
                                       "&Search for:", k_search_text_max};
constexpr DialogRowResource k_case_row{k_ignores_case, DialogRowKind::check, "&Ignore case"};
constexpr DialogRowResource k_word_row{k_whole_word, DialogRowKind::check, "&Whole word", 0, true};
constexpr DialogRowResource k_backwards_row{k_backwards, DialogRowKind::check, "&Backwards", 0,
                                            true};
constexpr std::array k_find_rows{k_text_row, k_case_row, k_word_row, k_backwards_row};
constexpr std::array k_replace_rows{
    k_text_row, DialogRowResource{k_replacement, DialogRowKind::edit, "Replace wi&th:", 0},
    k_case_row, k_word_row, k_backwards_row};

// Buttons by their numbers; the Find dialog has the first one and the last.
enum Button : int { k_find, k_replace_find, k_replace_all };
constexpr const char* k_find_titles[] = {"&Find next", "&Find prev."};
constexpr const char* k_replace_titles[] = {"&Replace, find next", "&Replace, find prev."};
constexpr std::array k_find_buttons{k_find_titles[0], "&Close"};
constexpr std::array k_replace_buttons{k_find_titles[0], k_replace_titles[0], "Replace &all",
                                       "&Close"};

constexpr std::array k_dialogs{
    DialogResource{.number = k_find_dialog,
                   .title = "Find",
                   .rows = k_find_rows,
                   .buttons = k_find_buttons,
                   .help_topic = static_cast<int>(HelpTopic::editor)},
    DialogResource{.number = k_replace_dialog,
                   .title = "Replace",
                   .rows = k_replace_rows,
                   .buttons = k_replace_buttons,
                   .help_topic = static_cast<int>(HelpTopic::editor)},
};

struct FindDialog {
    Dialog dialog;
    int resource = 0; ///< it was made from
};
FindDialog& find_dialog() {
    static FindDialog dialog;
    return dialog;
}

void show_matches(TextWindow& window) {
    window.shown_search().keep_showing(
        search_pattern(search_settings(), window.document().encoding));
}

void take_settings(Dialog& dialog) {
    SearchSettings& settings = search_settings();
    settings.text = find_row(dialog, k_text)->value;
    settings.ignores_case = find_row(dialog, k_ignores_case)->selected == 1;
    settings.whole_word = find_row(dialog, k_whole_word)->selected == 1;
    settings.backwards = find_row(dialog, k_backwards)->selected == 1;
    if (const DialogRow* row = find_row(dialog, k_replacement))
        settings.replacement = row->value;
}

/// The buttons for the direction, and for what can be done with the window in front.
void fit_buttons(Dialog& dialog) {
    const TextWindow* window = front_text_window();
    const int direction = find_row(dialog, k_backwards)->selected == 1 ? 1 : 0;
    dialog.buttons[k_find] = k_find_titles[direction];
    dialog.disabled_buttons = window == nullptr ? 1U << k_find : 0;
    if (find_dialog().resource != k_replace_dialog)
        return;
    dialog.buttons[k_replace_find] = k_replace_titles[direction];
    if (window == nullptr || window->is_read_only())
        dialog.disabled_buttons |= 1U << k_replace_find | 1U << k_replace_all;
}

void close_dialog() {
    set_front_follower(nullptr);
    xvt_dlg_close(find_dialog().dialog);
    if (TextWindow* window = front_text_window())
        window->shown_search().hide();
}

void follow_front(TextWindow* before) {
    TextWindow* window = front_text_window();
    if (before != nullptr && before != window)
        before->shown_search().hide();
    if (window == nullptr) {
        close_dialog();
        return;
    }
    fit_buttons(find_dialog().dialog);
    xvt_dlg_update(find_dialog().dialog);
    show_matches(*window);
}

void on_change(void*, Dialog& dialog, int) {
    take_settings(dialog);
    fit_buttons(dialog);
    if (TextWindow* window = front_text_window())
        show_matches(*window);
}

void on_button(void*, Dialog& dialog, int button) {
    TextWindow* window = front_text_window();
    const bool is_close = static_cast<std::size_t>(button) + 1 == dialog.buttons.size();
    if (is_close || window == nullptr) {
        close_dialog();
        return;
    }
    take_settings(dialog);
    if (button == k_find)
        find(*window, false);
    else if (button == k_replace_find)
        replace_and_find(*window);
    else if (replace_all(*window))
        close_dialog();
    find_row(dialog, k_text)->entries = search_settings().recent;
}

void fill_rows(Dialog& dialog, TextWindow* window) {
    const SearchSettings& settings = search_settings();
    DialogRow& text = *find_row(dialog, k_text);
    text.entries = settings.recent;
    const String selected = window == nullptr ? String() : text_to_find(*window);
    text.value = selected.empty() ? settings.text : selected;
    find_row(dialog, k_ignores_case)->selected = settings.ignores_case ? 1 : 0;
    find_row(dialog, k_whole_word)->selected = settings.whole_word ? 1 : 0;
    DialogRow& backwards = *find_row(dialog, k_backwards);
    backwards.selected = settings.backwards && window != nullptr ? 1 : 0;
    backwards.is_enabled = window != nullptr;
    if (DialogRow* row = find_row(dialog, k_replacement))
        row->value = settings.replacement;
}

void open(int resource, TextWindow* window) {
    xvt_res_register({.dialogs = k_dialogs});
    FindDialog& state = find_dialog();
    Dialog& dialog = state.dialog;
    if (!xvt_dlg_is_open(dialog) || state.resource != resource) {
        if (!xvt_dlg_create_res(dialog, resource)) {
            post_error(msg_no_dialog);
            return;
        }
        state.resource = resource;
        dialog.calls = {.on_change = on_change,
                        .on_button = on_button,
                        .on_close = [](void*, Dialog&, int) { close_dialog(); }};
    }
    fill_rows(dialog, window);
    take_settings(dialog);
    if (window != nullptr)
        note_text_window(*window, true);
    fit_buttons(dialog);
    xvt_dlg_open(dialog);
    set_front_follower(follow_front);
    if (window != nullptr)
        show_matches(*window);
}

} // namespace

String text_to_find(TextWindow& window) {
    constexpr ByteOffset k_taken_max = 200;
    const TextDocument& document = window.document();
    const TextRange range = selection(window.view().editing);
    const ByteOffset end = range.end - range.start > k_taken_max
                               ? character_start(document, range.start + k_taken_max)
                               : range.end;
    const String text = copy_text(document, range.start, end - range.start);
    return document.encoding == TextEncoding::utf_8 ? text : latin_1_to_utf_8(view(text));
}

void open_find_dialog(TextWindow* window) {
    open(k_find_dialog, window);
}

void open_replace_dialog(TextWindow* window) {
    open(k_replace_dialog, window);
}

} // namespace pellux
