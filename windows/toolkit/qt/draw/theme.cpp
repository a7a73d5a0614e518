#include "windows/toolkit/qt/draw/theme.h"

#include "core/os/environment.h"
#include "windows/toolkit/qt/draw/desktop_style.h"

#include <QApplication>
#include <QStyle>

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

namespace pellux {
namespace {

constexpr double k_contrast = 4.5;

QColor palette_color(QPalette::ColorRole role) {
    return QApplication::palette().color(QPalette::Active, role);
}

/// Light of an sRGB channel, of 1.
double light_of(int channel) {
    static const auto lights = [] {
        std::array<double, 256> values{};
        for (std::size_t i = 0; i < values.size(); ++i) {
            const double part = static_cast<double>(i) / 255;
            values[i] = part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
        }
        return values;
    }();
    return lights[static_cast<std::size_t>(channel)];
}

double luminance(QRgb color) {
    return 0.2126 * light_of(qRed(color)) + 0.7152 * light_of(qGreen(color)) +
           0.0722 * light_of(qBlue(color));
}

/// `color` in another lightness, 0 to 255.
QRgb with_lightness(const QColor& color, int lightness) {
    return QColor::fromHslF(std::max(0.0F, color.hslHueF()), color.hslSaturationF(),
                            static_cast<float>(lightness) / 255)
        .rgb();
}

/// The lightness nearest to the color's own towards `end` that is readable, or `end`.
QRgb moved_towards(int end, const QColor& color, QRgb paper) {
    const int step = end == 0 ? -1 : 1;
    int lightness = static_cast<int>(std::lround(color.lightnessF() * 255));
    QRgb moved = with_lightness(color, lightness);
    while (lightness != end && contrast_of(moved, paper) < k_contrast) {
        lightness += step;
        moved = with_lightness(color, lightness);
    }
    return moved;
}

QRgb readable(QRgb ink, QRgb paper) {
    if (contrast_of(ink, paper) >= k_contrast)
        return ink;
    const QColor color = QColor::fromRgb(ink);
    const int near = luminance(ink) < luminance(paper) ? 0 : 255;
    const QRgb moved = moved_towards(near, color, paper);
    // Black or white is readable on every paper, though not always the one that lies nearer.
    return contrast_of(moved, paper) >= k_contrast ? moved
                                                   : moved_towards(255 - near, color, paper);
}

QRgb ink_on(Color ink, Color paper) {
    const bool is_black = ink == Color::black;
    const QColor wanted =
        is_black ? palette_color(QPalette::Text) : QColor::fromRgb(color_rgb(ink));
    const bool is_selection = paper == xvt_scr_get_color(ThemeColor::highlight) &&
                              ink == xvt_scr_get_color(ThemeColor::highlighted_text);
    const bool is_desktops = is_selection || (is_black && paper == Color::white);
    return is_desktops ? wanted.rgb() : readable(wanted.rgb(), shown_paper(paper).rgb());
}

/// What was found out last, so that a run of text need not search for its colour.
struct ShownInk {
    Color ink = Color::black;
    Color paper = Color::black;
    QRgb shown = 0;
    qint64 palette = -1;
};
std::array<ShownInk, 64> shown_inks;

struct RoleColor {
    QPalette::ColorRole role;
    QRgb normal;
    QRgb disabled;
};

constexpr RoleColor k_dark[] = {
    {QPalette::Window, 0x2B2E33, 0x2B2E33},
    {QPalette::WindowText, 0xD9DCE1, 0x7C828B},
    {QPalette::Base, 0x1E2024, 0x26292D},
    {QPalette::AlternateBase, 0x25282C, 0x26292D},
    {QPalette::Text, 0xD9DCE1, 0x7C828B},
    {QPalette::PlaceholderText, 0x8D939C, 0x6A7079},
    {QPalette::Button, 0x363A40, 0x2F3237},
    {QPalette::ButtonText, 0xD9DCE1, 0x7C828B},
    {QPalette::BrightText, 0xFFFFFF, 0xA0A6AF},
    {QPalette::Highlight, 0x2D5F9A, 0x454A52},
    {QPalette::HighlightedText, 0xFFFFFF, 0xA0A6AF},
    {QPalette::Link, 0x79B4F2, 0x7C828B},
    {QPalette::LinkVisited, 0xC0A3EC, 0x7C828B},
    {QPalette::ToolTipBase, 0x3C4047, 0x3C4047},
    {QPalette::ToolTipText, 0xE4E6EA, 0xA0A6AF},
    {QPalette::Light, 0x4B5058, 0x40444B},
    {QPalette::Midlight, 0x40444B, 0x393D43},
    {QPalette::Mid, 0x24272B, 0x24272B},
    {QPalette::Dark, 0x1A1C1F, 0x1A1C1F},
    {QPalette::Shadow, 0x0D0E10, 0x0D0E10},
};

constexpr RoleColor k_light[] = {
    {QPalette::Window, 0xF0F1F3, 0xF0F1F3},
    {QPalette::WindowText, 0x1D2024, 0x8B9098},
    {QPalette::Base, 0xFFFFFF, 0xF5F6F7},
    {QPalette::AlternateBase, 0xF6F7F9, 0xF5F6F7},
    {QPalette::Text, 0x1D2024, 0x8B9098},
    {QPalette::PlaceholderText, 0x6E747D, 0xA4A9B0},
    {QPalette::Button, 0xF0F1F3, 0xF0F1F3},
    {QPalette::ButtonText, 0x1D2024, 0x8B9098},
    {QPalette::BrightText, 0xFFFFFF, 0xFFFFFF},
    {QPalette::Highlight, 0x2F6DB5, 0xC3C8CF},
    {QPalette::HighlightedText, 0xFFFFFF, 0xFFFFFF},
    {QPalette::Link, 0x1A5FB4, 0x8B9098},
    {QPalette::LinkVisited, 0x7A3E9D, 0x8B9098},
    {QPalette::ToolTipBase, 0xFFFBE6, 0xFFFBE6},
    {QPalette::ToolTipText, 0x1D2024, 0x8B9098},
    {QPalette::Light, 0xFFFFFF, 0xFFFFFF},
    {QPalette::Midlight, 0xE2E4E8, 0xE2E4E8},
    {QPalette::Mid, 0xB9BDC4, 0xB9BDC4},
    {QPalette::Dark, 0x9DA2AA, 0x9DA2AA},
    {QPalette::Shadow, 0x6B7078, 0x6B7078},
};

template <std::size_t count>
void use_palette(const RoleColor (&colors)[count]) {
    QPalette palette;
    for (const RoleColor& color : colors) {
        palette.setColor(QPalette::Active, color.role, QColor::fromRgb(color.normal));
        palette.setColor(QPalette::Inactive, color.role, QColor::fromRgb(color.normal));
        palette.setColor(QPalette::Disabled, color.role, QColor::fromRgb(color.disabled));
    }
    QApplication::setPalette(palette);
}

} // namespace

QColor shown_paper(Color paper) {
    if (paper == Color::white)
        return palette_color(QPalette::Base);
    if (paper == Color::light_gray)
        return palette_color(QPalette::Window);
    return QColor::fromRgb(color_rgb(paper));
}

QColor shown_ink(Color ink, Color paper) {
    const qint64 palette = QApplication::palette().cacheKey();
    const auto mixed = static_cast<std::uint32_t>(ink) * 31 + static_cast<std::uint32_t>(paper);
    ShownInk& known = shown_inks[(mixed * 0x9E3779B1U) >> 26];
    if (known.palette != palette || known.ink != ink || known.paper != paper)
        known = {ink, paper, ink_on(ink, paper), palette};
    return QColor::fromRgb(known.shown);
}

QColor shown_pen(Color pen, Color paper) {
    const int percent = pen == Color::dark_gray    ? 60
                        : pen == Color::gray       ? 40
                        : pen == Color::light_gray ? 20
                                                   : 0;
    if (pen == Color::white)
        return palette_color(QPalette::Light);
    if (percent == 0)
        return shown_ink(pen, paper);
    const QColor text = palette_color(QPalette::Text);
    const QColor ground = shown_paper(paper);
    const auto mix = [&](int ink, int base) {
        return (ink * percent + base * (100 - percent)) / 100;
    };
    return {mix(text.red(), ground.red()), mix(text.green(), ground.green()),
            mix(text.blue(), ground.blue())};
}

double contrast_of(QRgb a, QRgb b) {
    const auto [low, high] = std::minmax({luminance(a), luminance(b)});
    return (high + 0.05) / (low + 0.05);
}

void apply_theme() {
    const char* wanted = environment_variable("PELLUX_THEME");
    const QLatin1String name(wanted == nullptr ? "" : wanted);
    const bool is_dark = name.compare(QLatin1String("dark"), Qt::CaseInsensitive) == 0;
    const bool is_light = name.compare(QLatin1String("light"), Qt::CaseInsensitive) == 0;
    if (is_dark || is_light || QApplication::style()->name() == QLatin1String("fusion"))
        QApplication::setStyle(new DesktopStyle);
    if (is_dark)
        use_palette(k_dark);
    else if (is_light)
        use_palette(k_light);
}

} // namespace pellux
