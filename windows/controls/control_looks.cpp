#include "windows/controls/control_looks.h"

namespace pellux {
namespace {

std::uint8_t mix(std::uint32_t under, std::uint32_t over, int shift, int percent) {
    const auto a = static_cast<int>(under >> shift & 0xFF);
    const auto b = static_cast<int>(over >> shift & 0xFF);
    return static_cast<std::uint8_t>(a + (b - a) * percent / 100);
}

} // namespace

Color mix_colors(Color under, Color over, int percent) {
    const std::uint32_t a = color_rgb(under);
    const std::uint32_t b = color_rgb(over);
    return make_color(mix(a, b, 16, percent), mix(a, b, 8, percent), mix(a, b, 0, percent));
}

Color shown_ground(Color fill) {
    if (fill == Color::light_gray)
        return xvt_scr_get_color(ThemeColor::window);
    return fill == Color::white ? xvt_scr_get_color(ThemeColor::base) : fill;
}

} // namespace pellux
