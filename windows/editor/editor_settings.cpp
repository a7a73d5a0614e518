#include "windows/editor/editor_settings.h"

#include "core/os/ascii.h"
#include "core/os/path.h"
#include "core/os/settings.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace pellux {
namespace {

constexpr std::string_view k_keys = "EditorKeys";
constexpr std::string_view k_indentation = "KeepIndentation";
constexpr std::string_view k_font = "EditorFont";
constexpr std::string_view k_recent = "RecentText";

constexpr std::string_view k_desktop = "Desktop";
constexpr std::string_view k_no = "No";

String recent_name(std::size_t index) {
    return String(k_recent) + static_cast<char>('1' + index);
}

/// "11 0 DejaVu Sans Mono": size, style, family.
std::optional<Font> parse_font(std::string_view text) {
    int numbers[2] = {};
    for (int& number : numbers) {
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
        if (error != std::errc() || end == text.data() + text.size() || *end != ' ')
            return std::nullopt;
        text.remove_prefix(static_cast<std::size_t>(end - text.data()) + 1);
    }
    if (text.empty() || numbers[0] < 1 || numbers[1] < 0 || numbers[1] > UINT16_MAX)
        return std::nullopt;
    Font font;
    xvt_font_set_family(font, text);
    xvt_font_set_size(font, numbers[0]);
    xvt_font_set_style(font, static_cast<std::uint16_t>(numbers[1]));
    return font;
}

String font_text(const std::optional<Font>& font) {
    if (!font)
        return {};
    char numbers[32];
    const int length = std::snprintf(numbers, sizeof numbers, "%d %d ", font->size, font->style);
    return String(numbers, static_cast<std::size_t>(length)) + xvt_font_get_family(*font);
}

} // namespace

EditorSettings& editor_settings() {
    static EditorSettings settings;
    return settings;
}

void read_editor_settings() {
    EditorSettings& settings = editor_settings();
    settings = {};
    char buffer[k_path_capacity];
    std::string_view value;
    if (read_setting(k_keys, buffer, value) && same_ignoring_case(value, k_desktop))
        settings.keys = KeyScheme::desktop;
    if (read_setting(k_indentation, buffer, value))
        settings.keeps_indentation = !same_ignoring_case(value, k_no);
    if (read_setting(k_font, buffer, value))
        settings.font = parse_font(value);
    for (std::size_t i = 0; i < k_recent_max; ++i)
        if (read_setting(view(recent_name(i)), buffer, value) && is_absolute(value))
            settings.recent.emplace_back(value);
}

void write_editor_settings() {
    EditorSettings& settings = editor_settings();
    settings.has_news = false;
    const String font = font_text(settings.font);
    std::array<String, k_recent_max> names;
    Vector<Setting> written{{k_keys, settings.keys == KeyScheme::desktop ? k_desktop : "Standard"},
                            {k_indentation, settings.keeps_indentation ? "Yes" : k_no},
                            {k_font, view(font)}};
    for (std::size_t i = 0; i < settings.recent.size(); ++i) {
        names[i] = recent_name(i);
        written.push_back({view(names[i]), view(settings.recent[i])});
    }
    static_cast<void>(write_settings(written));
}

void note_recent(std::string_view path) {
    Vector<String>& recent = editor_settings().recent;
    if (!recent.empty() && view(recent.front()) == path)
        return;
    std::erase_if(recent, [&](const String& each) { return view(each) == path; });
    recent.emplace(recent.begin(), path);
    if (recent.size() > k_recent_max)
        recent.pop_back();
    editor_settings().has_news = true;
}

} // namespace pellux
