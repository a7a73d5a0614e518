#pragma once

#include <cstdint>

namespace pellux {

/// The top byte is an index, the three below it are red, green and blue. The value is what is
/// stored; what the screen shows follows the desktop's theme (docs/toolkit.md).
enum class Color : std::uint32_t {
    red = 0x01FF0000,
    green = 0x0200FF00,
    blue = 0x030000FF,
    cyan = 0x0400FFFF,
    magenta = 0x05FF00FF,
    yellow = 0x06FFFF00,
    black = 0x07000000,
    dark_gray = 0x08404040,
    gray = 0x09808080,
    light_gray = 0x0AC0C0C0,
    white = 0x0BFFFFFF,
};

/// A colour of its own, with index 0.
[[nodiscard]] constexpr Color make_color(std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
    return static_cast<Color>(std::uint32_t{red} << 16 | std::uint32_t{green} << 8 | blue);
}
[[nodiscard]] constexpr std::uint8_t color_index(Color color) {
    return static_cast<std::uint8_t>(static_cast<std::uint32_t>(color) >> 24);
}
[[nodiscard]] constexpr std::uint32_t color_rgb(Color color) {
    return static_cast<std::uint32_t>(color) & 0xFFFFFF;
}

/// Colours of the desktop's theme, from which a control mixes its own.
enum class ThemeColor { window, text, base, highlight, highlighted_text };
/// As it is now, a colour of its own; a theme event tells when it changes.
[[nodiscard]] Color xvt_scr_get_color(ThemeColor which);

} // namespace pellux
