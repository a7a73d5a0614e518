#include "windows/textview/find_replace.h"

#include "core/text/text_replace.h"
#include "windows/textview/messages.h"
#include "windows/textview/search_settings.h"
#include "windows/textview/text_window.h"
#include "windows/toolkit/message_box.h"

#include <algorithm>

namespace pellux {
namespace {

template <typename... Arguments>
void post_note(Message<Arguments...>& message, std::type_identity_t<Arguments>... arguments) {
    xvt_dm_post_note("%s", format_message(message, arguments...).c_str());
}

bool has_search_text() {
    if (search_settings().text.empty())
        post_note(msg_no_search_text);
    return !search_settings().text.empty();
}

/// The replacement in the encoding of a text.
std::optional<String> replacement_for(const TextDocument& document) {
    if (search_settings().replacement.empty()) {
        post_note(msg_no_replacement);
        return std::nullopt;
    }
    std::optional<String> text = text_in(view(search_settings().replacement), document.encoding);
    if (!text)
        post_note(msg_replacement_lacks);
    return text;
}

void show_change(TextWindow& window) {
    show_caret(window.view());
    if (window.has_view())
        window.hook();
}

/// Looks on from the caret; `at_end` says that there is none.
bool find_next(TextWindow& window, const SearchSettings& settings, Message<const char*>& at_end) {
    keep_search_text(view(settings.text));
    TextEditing& editing = window.view().editing;
    const SearchPattern pattern = search_pattern(settings, editing.document.encoding);
    window.shown_search().show(pattern);
    const std::optional<TextRange> match = find_from_caret(editing, pattern);
    if (!match) {
        post_note(at_end, settings.text.c_str());
        return false;
    }
    select_match(editing, *match);
    show_change(window);
    return true;
}

} // namespace

bool find(TextWindow& window, bool from_top) {
    if (!has_search_text())
        return false;
    TextEditing& editing = window.view().editing;
    if (from_top)
        select_range(editing, 0, 0);
    return find_next(window, search_settings(), msg_not_found);
}

bool find_other_way(TextWindow& window) {
    if (!has_search_text())
        return false;
    SearchSettings settings = search_settings();
    settings.backwards = !settings.backwards;
    return find_next(window, settings, msg_not_found);
}

bool replace_selection(TextWindow& window, bool quiet) {
    TextEditing& editing = window.view().editing;
    if (editing.is_read_only || !has_search_text())
        return false;
    const std::optional<String> text = replacement_for(editing.document);
    if (!text)
        return false;
    const SearchSettings& settings = search_settings();
    const SearchPattern pattern = search_pattern(settings, editing.document.encoding);
    if (replace_match(editing, pattern, view(*text))) {
        show_change(window);
        return true;
    }
    if (!quiet)
        post_note(msg_not_selected, settings.text.c_str());
    return false;
}

void replace_and_find(TextWindow& window) {
    if (replace_selection(window, false) && window.has_view())
        find_next(window, search_settings(), msg_last_occurrence);
}

std::optional<std::int64_t> replace_all(TextWindow& window) {
    TextEditing& editing = window.view().editing;
    if (editing.is_read_only || !has_search_text())
        return std::nullopt;
    const std::optional<String> text = replacement_for(editing.document);
    if (!text)
        return std::nullopt;
    keep_search_text(view(search_settings().text));
    const SearchPattern pattern = search_pattern(search_settings(), editing.document.encoding);
    const std::int64_t count = replace_all(editing, pattern, view(*text));
    show_change(window);
    if (count == 1)
        post_note(msg_one_replacement);
    else
        post_note(msg_replacements, static_cast<int>(std::min<std::int64_t>(count, INT32_MAX)));
    return count;
}

} // namespace pellux
