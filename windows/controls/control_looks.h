#pragma once

#include "windows/toolkit/color.h"

#include <cstdint>

namespace pellux {

/// Colours and style of the controls where their properties name no others.
struct ControlDefaults {
    Color toolbar_fill = Color::light_gray;
    Color picture_button_fill = Color::light_gray;
    Color text_button_fill = Color::light_gray;
    Color status_fill = Color::light_gray;
    Color separator = Color::light_gray; ///< of a pen
    Color edge = Color::light_gray;      ///< of a pen

    Color text = Color::black;
    Color plain_fill = Color::white;
    Color plain_text = Color::black;
    Color plain_edge = Color::dark_gray; ///< of a pen

    std::uint16_t font_style = 1;
    int font_size = 10; ///< points
    int corner_px = 4;
};

inline constexpr ControlDefaults k_control_defaults{};

/// `percent` of `over`, the rest of `under`; a colour of its own.
[[nodiscard]] Color mix_colors(Color under, Color over, int percent);

/// What the screen shows where a stored colour is the ground.
[[nodiscard]] Color shown_ground(Color fill);

} // namespace pellux
