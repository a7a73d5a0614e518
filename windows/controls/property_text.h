#pragma once

#include "core/common/containers.h"
#include "windows/toolkit/color.h"

#include <optional>
#include <span>
#include <string_view>

namespace pellux {

// The language of a custom control's instance data: lines NAME=VALUE, names in capitals. A value
// that cannot be read counts as one that is not there.

/// The value of the first line that begins with `name` and '='; a part of that line.
[[nodiscard]] std::optional<std::string_view> find_property(std::span<const String> lines,
                                                            std::string_view name);

/// Two numbers joined by any one character ("16x16", "4,3"), or "AUTO".
struct PropertyPair {
    bool is_auto = false;
    int first = 0;
    int second = 0;

    bool operator==(const PropertyPair&) const = default;
};

[[nodiscard]] std::optional<bool> parse_boolean(std::string_view value);
[[nodiscard]] std::optional<int> parse_number(std::string_view value);
[[nodiscard]] std::optional<PropertyPair> parse_pair(std::string_view value);
/// A name, or red, green and blue from 0 to 255 joined by single characters.
[[nodiscard]] std::optional<Color> parse_color(std::string_view value);
/// A colour in the form that `parse_color` reads.
[[nodiscard]] String color_text(Color color);
/// A text without the double quotes around it.
[[nodiscard]] std::string_view parse_text(std::string_view value);

// The same for a property of some lines; `missing` where it is not there.

[[nodiscard]] bool boolean_property(std::span<const String> lines, std::string_view name,
                                    bool missing = false);
[[nodiscard]] int number_property(std::span<const String> lines, std::string_view name,
                                  int missing);
[[nodiscard]] std::optional<PropertyPair> pair_property(std::span<const String> lines,
                                                        std::string_view name);
[[nodiscard]] Color color_property(std::span<const String> lines, std::string_view name,
                                   Color missing);
[[nodiscard]] std::string_view text_property(std::span<const String> lines, std::string_view name,
                                             std::string_view missing);

/// Takes a decimal number off `rest`, blanks before it too. One that is too large for an `int` is
/// its nearest. False, with `rest` as it was, when there is none.
[[nodiscard]] bool take_number(std::string_view& rest, int& number);

} // namespace pellux
