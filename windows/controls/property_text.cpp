#include "windows/controls/property_text.h"

#include "core/common/blanks.h"
#include "core/diagnostics/message.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

namespace pellux {
namespace {

struct NamedColor {
    std::string_view name;
    Color color;
};

constexpr std::array k_colors{
    NamedColor{"RED", Color::red},           NamedColor{"GREEN", Color::green},
    NamedColor{"BLUE", Color::blue},         NamedColor{"CYAN", Color::cyan},
    NamedColor{"MAGENTA", Color::magenta},   NamedColor{"YELLOW", Color::yellow},
    NamedColor{"BLACK", Color::black},       NamedColor{"DKGRAY", Color::dark_gray},
    NamedColor{"DK_GRAY", Color::dark_gray}, NamedColor{"GRAY", Color::gray},
    NamedColor{"LTGRAY", Color::light_gray}, NamedColor{"LT_GRAY", Color::light_gray},
    NamedColor{"WHITE", Color::white},
};

/// Takes as many numbers as there is room for, any one character between two of them.
template <std::size_t k_count>
bool take_joined(std::string_view value, std::array<int, k_count>& numbers) {
    for (std::size_t i = 0; i < k_count; ++i) {
        if (i > 0 && !value.empty())
            value.remove_prefix(1);
        if (!take_number(value, numbers[i]))
            return false;
    }
    return true;
}

std::uint8_t to_component(int number) {
    return static_cast<std::uint8_t>(std::clamp(number, 0, 255));
}

} // namespace

bool take_number(std::string_view& rest, int& number) {
    constexpr std::string_view k_blanks = " \t\r\n\v\f";
    std::string_view text = rest;
    text.remove_prefix(std::min(text.find_first_not_of(k_blanks), text.size()));
    if (text.starts_with('+') && !text.starts_with("+-"))
        text.remove_prefix(1);
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error == std::errc::invalid_argument)
        return false;
    using Limits = std::numeric_limits<int>;
    number = error == std::errc() ? value : text.starts_with('-') ? Limits::min() : Limits::max();
    rest = text.substr(static_cast<std::size_t>(end - text.data()));
    return true;
}

std::optional<std::string_view> find_property(std::span<const String> lines,
                                              std::string_view name) {
    for (const String& line : lines) {
        const std::string_view text = view(line);
        if (text.starts_with(name) && text.substr(name.size()).starts_with('='))
            return trim_blanks(text.substr(name.size() + 1));
    }
    return std::nullopt;
}

std::optional<bool> parse_boolean(std::string_view value) {
    if (value == "TRUE")
        return true;
    if (value == "FALSE")
        return false;
    return std::nullopt;
}

std::optional<int> parse_number(std::string_view value) {
    int number = 0;
    return take_number(value, number) ? std::optional(number) : std::nullopt;
}

std::optional<PropertyPair> parse_pair(std::string_view value) {
    if (value == "AUTO")
        return PropertyPair{.is_auto = true};
    std::array<int, 2> numbers{};
    if (!take_joined(value, numbers))
        return std::nullopt;
    return PropertyPair{.first = numbers[0], .second = numbers[1]};
}

std::optional<Color> parse_color(std::string_view value) {
    for (const NamedColor& known : k_colors)
        if (known.name == value)
            return known.color;
    std::array<int, 3> numbers{};
    if (!take_joined(value, numbers))
        return std::nullopt;
    return make_color(to_component(numbers[0]), to_component(numbers[1]), to_component(numbers[2]));
}

String color_text(Color color) {
    for (const NamedColor& known : k_colors)
        if (known.color == color)
            return String(known.name);
    const std::uint32_t rgb = color_rgb(color);
    return format_text("%u,%u,%u", rgb >> 16, rgb >> 8 & 0xFF, rgb & 0xFF);
}

std::string_view parse_text(std::string_view value) {
    if (!value.starts_with('"'))
        return value;
    value.remove_prefix(1);
    return value.substr(0, value.rfind('"'));
}

bool boolean_property(std::span<const String> lines, std::string_view name, bool missing) {
    const auto value = find_property(lines, name);
    return value ? parse_boolean(*value).value_or(missing) : missing;
}

int number_property(std::span<const String> lines, std::string_view name, int missing) {
    const auto value = find_property(lines, name);
    return value ? parse_number(*value).value_or(missing) : missing;
}

std::optional<PropertyPair> pair_property(std::span<const String> lines, std::string_view name) {
    const auto value = find_property(lines, name);
    return value ? parse_pair(*value) : std::nullopt;
}

Color color_property(std::span<const String> lines, std::string_view name, Color missing) {
    const auto value = find_property(lines, name);
    return value ? parse_color(*value).value_or(missing) : missing;
}

std::string_view text_property(std::span<const String> lines, std::string_view name,
                               std::string_view missing) {
    const auto value = find_property(lines, name);
    return value ? parse_text(*value) : missing;
}

} // namespace pellux
