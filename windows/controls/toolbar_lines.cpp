#include "windows/controls/toolbar_lines.h"

#include "core/common/blanks.h"
#include "core/diagnostics/message.h"
#include "windows/controls/control_looks.h"
#include "windows/controls/property_text.h"

#include <algorithm>
#include <array>
#include <limits>
#include <optional>
#include <string_view>
#include <utility>

namespace pellux {
namespace {

/// How the arguments of a control line follow each other.
enum class Arguments { title, picture, title_and_description, list, none };

struct TypeWord {
    std::string_view word;
    ToolbarPart type;
    Arguments arguments;
};

constexpr std::array k_type_words{
    TypeWord{"SEPARATOR", ToolbarPart::separator, Arguments::none},
    TypeWord{"BUTTON", ToolbarPart::button, Arguments::title},
    TypeWord{"PICBUTN", ToolbarPart::picture_button, Arguments::picture},
    TypeWord{"TOGLBUTN", ToolbarPart::toggle_button, Arguments::picture},
    TypeWord{"TOGLTEXT", ToolbarPart::toggle_text, Arguments::title_and_description},
    TypeWord{"LISTBUTTON", ToolbarPart::list_button, Arguments::list},
    TypeWord{"LISTEDIT", ToolbarPart::list_edit, Arguments::list},
};

bool begins_with_type_word(const String& line) {
    return std::any_of(k_type_words.begin(), k_type_words.end(),
                       [&](const TypeWord& known) { return line.starts_with(known.word); });
}

const TypeWord* find_type_word(std::string_view word) {
    const auto found = std::find_if(k_type_words.begin(), k_type_words.end(),
                                    [&](const TypeWord& known) { return known.word == word; });
    return found == k_type_words.end() ? nullptr : found;
}

void skip_commas_and_blanks(std::string_view& rest) {
    rest.remove_prefix(std::min(rest.find_first_not_of(", \t"), rest.size()));
}

/// Takes a quoted text, or one up to a comma or blank, and what parts it from the next argument.
std::optional<std::string_view> take_string(std::string_view& rest) {
    skip_commas_and_blanks(rest);
    if (rest.empty())
        return std::nullopt;
    const bool is_quoted = rest.starts_with('"');
    if (is_quoted)
        rest.remove_prefix(1);
    const std::string_view text = rest.substr(0, rest.find_first_of(is_quoted ? "\"" : ", \t"));
    rest.remove_prefix(std::min(text.size() + (is_quoted ? 1 : 0), rest.size()));
    skip_commas_and_blanks(rest);
    return text;
}

/// The entries between the semicolons; one at the end begins no further entry.
Vector<String> split_entries(std::string_view text) {
    Vector<String> entries;
    while (!text.empty()) {
        const std::string_view entry = text.substr(0, text.find(';'));
        entries.emplace_back(entry);
        text.remove_prefix(std::min(entry.size() + 1, text.size()));
    }
    return entries;
}

/// What is wrong with the arguments; empty when nothing is.
String take_arguments(Arguments arguments, std::string_view rest, const String& line,
                      ToolbarItem& item) {
    switch (arguments) {
    case Arguments::title:
        item.title = take_string(rest).value_or("");
        break;
    case Arguments::picture:
        if (!take_number(rest, item.resource_id))
            return format_text("Toolbar could not parse resource_id from '%s'", line.c_str());
        item.description = take_string(rest).value_or("");
        break;
    case Arguments::title_and_description: {
        const auto title = take_string(rest);
        if (!title)
            return format_text("Toolbar could not parse title from '%s'", line.c_str());
        item.title = *title;
        item.description = take_string(rest).value_or("");
        break;
    }
    case Arguments::list:
        item.items = split_entries(take_string(rest).value_or(""));
        break;
    case Arguments::none:
        break;
    }
    static_cast<void>(take_number(rest, item.width));
    if (arguments == Arguments::list && rest.starts_with(',')) {
        rest.remove_prefix(1);
        if (int selection = 0; take_number(rest, selection))
            item.selection = selection;
    }
    return {};
}

/// Reads one control line; false when no further one is to be read.
bool read_control_line(const String& line, ToolbarDescription& description) {
    std::string_view rest = view(line);
    const std::string_view word = trim_blanks(rest.substr(0, rest.find('=')));
    ToolbarItem item;
    bool has_id = false;
    if (const std::size_t equals = rest.find('='); equals != std::string_view::npos) {
        rest.remove_prefix(equals + 1);
        has_id = take_number(rest, item.id);
    } else {
        rest = {};
    }
    const TypeWord* known = find_type_word(word);
    const bool is_separator = known != nullptr && known->type == ToolbarPart::separator;
    if ((word.empty() || !has_id || item.id < 1) && !is_separator) {
        description.errors.push_back(format_text(
            "Toolbar could not parse control type or id from '%s' in toolbar", line.c_str()));
        return true;
    }
    if (known == nullptr) {
        const String text(word);
        description.errors.push_back(
            format_text("'%s' is not a legal control type for toolbar.", text.c_str()));
        return false;
    }
    item.type = known->type;
    // The arguments stand behind the comma after the id, and not without it.
    rest = trim_blanks(rest);
    if (rest.starts_with(','))
        rest.remove_prefix(1);
    else
        rest = {};
    String error = take_arguments(known->arguments, rest, line, item);
    if (error.empty())
        description.items.push_back(std::move(item));
    else
        description.errors.push_back(std::move(error));
    return true;
}

std::int16_t offset_property(std::span<const String> lines, std::string_view name,
                             std::int16_t missing) {
    using Limits = std::numeric_limits<std::int16_t>;
    const int number = number_property(lines, name, missing);
    return static_cast<std::int16_t>(std::clamp<int>(number, Limits::min(), Limits::max()));
}

ToolbarSettings read_settings(std::span<const String> lines) {
    ToolbarSettings settings;
    settings.fill = color_property(lines, "FILL_COLOR", k_control_defaults.toolbar_fill);
    settings.text = color_property(lines, "TEXT_COLOR", k_control_defaults.text);
    settings.top_offset = offset_property(lines, "TOP_OFFSET", settings.top_offset);
    settings.left_start = offset_property(lines, "LEFT_START", settings.left_start);
    settings.left_offset = offset_property(lines, "LEFT_OFFSET", settings.left_offset);
    settings.top_start = offset_property(lines, "TOP_START", settings.top_start);
    settings.is_vertical = boolean_property(lines, "VERTICAL");
    settings.is_task_window = boolean_property(lines, "TASK_WIN");
    settings.is_debug = boolean_property(lines, "DEBUG");

    settings.is_autosized = boolean_property(lines, "AUTOSIZED", true);
    if (boolean_property(lines, "SCALED")) {
        settings.is_scaled = true;
        settings.is_autosized = false;
    }
    settings.is_translated = boolean_property(lines, "TRANSLATED") && !pair_property(lines, "POS");
    if (const auto size = pair_property(lines, "SIZE"); size && !size->is_auto)
        settings.is_autosized = settings.is_scaled = false;
    if (boolean_property(lines, "PLAIN")) {
        settings.is_plain = true;
        settings.fill = k_control_defaults.plain_fill;
        settings.text = k_control_defaults.plain_text;
    }
    return settings;
}

} // namespace

ToolbarDescription parse_toolbar_lines(std::span<const String> lines) {
    ToolbarDescription description;
    if (lines.empty()) {
        description.errors.emplace_back(
            "Could not get properties for toolbar in toolbar E_CREATE!");
        return description;
    }
    if (lines.size() > k_toolbar_lines_max) {
        description.errors.push_back(format_text("Too many lines of instance data (%d > %d)",
                                                 static_cast<int>(lines.size()),
                                                 k_toolbar_lines_max));
        return description;
    }
    description.settings = read_settings(lines);
    const auto first = std::find_if(lines.begin() + 1, lines.end(), begins_with_type_word);
    for (auto line = first; line != lines.end(); ++line)
        if (!read_control_line(*line, description))
            break;
    return description;
}

} // namespace pellux
