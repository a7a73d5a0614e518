#include "windows/textview/search_settings.h"

#include "core/os/settings.h"

#include <algorithm>
#include <array>

namespace pellux {
namespace {

constexpr std::string_view k_recent = "RecentSearch";

String recent_name(std::size_t index) {
    char number[24];
    const int length = std::snprintf(number, sizeof number, "%zu", index + 1);
    return String(k_recent) + String(number, static_cast<std::size_t>(length));
}

bool can_be_kept(std::string_view text) {
    return !text.empty() && text.size() <= static_cast<std::size_t>(k_search_text_max) &&
           text.find('\0') == std::string_view::npos;
}

SearchSettings read_settings() {
    SearchSettings settings;
    char buffer[k_search_text_max];
    std::string_view value;
    for (std::size_t i = 0; i < k_recent_searches_max; ++i)
        if (read_setting(view(recent_name(i)), buffer, value) && !value.empty())
            settings.recent.emplace_back(value);
    return settings;
}

} // namespace

SearchSettings& search_settings() {
    static SearchSettings settings = read_settings();
    return settings;
}

void read_search_settings() {
    search_settings() = read_settings();
}

void keep_search_text(std::string_view text) {
    Vector<String>& recent = search_settings().recent;
    if (!can_be_kept(text) || (!recent.empty() && view(recent.front()) == text))
        return;
    String kept(text);
    std::erase(recent, kept);
    recent.insert(recent.begin(), std::move(kept));
    if (recent.size() > k_recent_searches_max)
        recent.pop_back();
    std::array<String, k_recent_searches_max> names;
    Vector<Setting> written;
    for (std::size_t i = 0; i < recent.size(); ++i) {
        names[i] = recent_name(i);
        written.push_back({view(names[i]), view(recent[i])});
    }
    // What can't be written is kept for the run.
    static_cast<void>(write_settings(written));
}

std::optional<String> text_in(std::string_view text, TextEncoding encoding) {
    return encoding == TextEncoding::utf_8 ? String(text) : utf_8_to_latin_1(text);
}

SearchPattern search_pattern(const SearchSettings& settings, TextEncoding encoding) {
    const std::optional<String> text = text_in(view(settings.text), encoding);
    return compile_search({.pattern = text ? view(*text) : std::string_view(),
                           .ignores_case = settings.ignores_case,
                           .backwards = settings.backwards,
                           .whole_word = settings.whole_word},
                          encoding);
}

} // namespace pellux
