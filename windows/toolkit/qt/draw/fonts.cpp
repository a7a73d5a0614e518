#include "windows/toolkit/qt/draw/fonts.h"

#include "windows/toolkit/qt/text_conversion.h"

#include <QApplication>
#include <QFontDatabase>
#include <QImage>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <limits>

namespace pellux {
namespace {

constexpr std::size_t k_faces_max = 32;
constexpr std::size_t k_coverage_max = 4 << 20;
constexpr int k_points_max = 400;
constexpr std::size_t k_families_max = std::numeric_limits<std::uint16_t>::max();

struct CachedFace {
    Font font;
    int pixels = 0;
    Owned<FontFace> face;
};

struct Fonts {
    Vector<String> families;  ///< number 1 and on; 0 is the desktop's
    Vector<CachedFace> faces; ///< the one used last stands first
};
Fonts fonts;

bool has_style(Font font, FontStyle style) {
    return (font.style & static_cast<std::uint16_t>(style)) != 0;
}

QString fixed_family() {
    const auto known = QStringLiteral("DejaVu Sans Mono");
    return QFontDatabase::hasFamily(known)
               ? known
               : QFontDatabase::systemFont(QFontDatabase::FixedFont).family();
}

/// Sets the family that a name stands for.
void set_named_family(QFont& font, const QString& name) {
    const auto is = [&](const char* other) {
        return name.compare(QLatin1String(other), Qt::CaseInsensitive) == 0;
    };
    if (name.isEmpty() || is("helvetica")) {
        font.setFamily(QApplication::font().family());
    } else if (is("times")) {
        font.setStyleHint(QFont::Serif);
        font.setFamily(font.defaultFamily());
    } else if (is("courier")) {
        font.setStyleHint(QFont::TypeWriter);
        font.setFamily(fixed_family());
    } else {
        if (name == fixed_family())
            font.setStyleHint(QFont::TypeWriter);
        font.setFamily(name);
    }
}

int points_of(Font font) {
    const int points = font.size != 0 ? font.size : QFontInfo(QApplication::font()).pointSize();
    return std::clamp(points, 1, k_points_max);
}

/// Without its size and underline.
QFont styled_font(Font font) {
    QFont styled;
    set_named_family(styled, to_qstring(view(xvt_font_get_family(font))));
    styled.setBold(has_style(font, FontStyle::bold));
    styled.setItalic(has_style(font, FontStyle::italic));
    return styled;
}

/// What shows a Latin-1 character; a soft hyphen is one that shows.
QChar shown_character(unsigned char character) {
    constexpr unsigned char k_soft_hyphen = 0xAD;
    if (is_control(character))
        return QLatin1Char(' ');
    return QLatin1Char(character == k_soft_hyphen ? '-' : static_cast<char>(character));
}

/// Cuts `picture`, white on black, to its ink and keeps that as the glyph's mask.
void keep_ink(FontFace& face, Glyph& glyph, const QImage& picture, QPoint pen) {
    QRect ink;
    for (int y = 0; y < picture.height(); ++y) {
        const uchar* row = picture.constScanLine(y);
        const uchar* const end = row + picture.width();
        const auto is_ink = [](uchar value) { return value != 0; };
        const uchar* const first = std::find_if(row, end, is_ink);
        if (first == end)
            continue;
        const uchar* last = end - 1;
        while (*last == 0)
            --last;
        ink |= QRect(QPoint(static_cast<int>(first - row), y),
                     QPoint(static_cast<int>(last - row), y));
    }
    glyph.left = ink.left() - pen.x();
    glyph.top = ink.top() - pen.y();
    glyph.width = ink.width();
    glyph.height = ink.height();
    glyph.coverage = face.coverage.size();
    for (int y = ink.top(); y <= ink.bottom(); ++y) {
        const uchar* from = picture.constScanLine(y) + ink.left();
        face.coverage.insert(face.coverage.end(), from, from + ink.width());
    }
}

} // namespace

FontFace::FontFace(const QFont& sized) : font(sized), metrics(sized) {
    for (std::size_t i = 0; i < advances.size(); ++i)
        advances[i] =
            std::max(0, metrics.horizontalAdvance(shown_character(static_cast<unsigned char>(i))));
    const bool is_fixed = std::all_of(advances.begin(), advances.end(),
                                      [&](int advance) { return advance == advances[0]; });
    common_advance = is_fixed ? advances[0] : 0;
    const QRect largest = metrics.boundingRect(QLatin1Char('W'));
    reach = 2 * std::max({metrics.maxWidth(), metrics.height(), largest.width()});
    underline_top = std::max(1, metrics.underlinePos());
    underline_height = std::max(1, metrics.lineWidth());
}

FontFace& font_face(Font font, double pixels) {
    font.style &=
        static_cast<std::uint16_t>(FontStyle::bold) | static_cast<std::uint16_t>(FontStyle::italic);
    const int size = std::max(1, static_cast<int>(std::lround(points_of(font) * pixels)));
    auto& faces = fonts.faces;
    const auto found = std::find_if(faces.begin(), faces.end(), [&](const CachedFace& cached) {
        return cached.pixels == size && cached.font == font;
    });
    if (found != faces.end()) {
        std::rotate(faces.begin(), found, found + 1);
        return *faces.front().face;
    }
    QFont sized = styled_font(font);
    sized.setPixelSize(size);
    sized.setHintingPreference(QFont::PreferFullHinting);
    // Pixels are grey, so that they look the same whatever the order of a screen's colours.
    sized.setStyleStrategy(QFont::NoSubpixelAntialias);
    if (faces.empty())
        qAddPostRoutine(forget_fonts);
    if (faces.size() == k_faces_max)
        faces.pop_back();
    faces.insert(faces.begin(), CachedFace{font, size, make_owned<FontFace>(sized)});
    return *faces.front().face;
}

QFont widget_font(Font font) {
    QFont shown = styled_font(font);
    shown.setPointSize(points_of(font));
    shown.setUnderline(has_style(font, FontStyle::underline));
    return shown;
}

void forget_fonts() {
    fonts.faces.clear();
}

const Glyph& glyph_of(FontFace& face, unsigned char character) {
    Glyph& glyph = face.glyphs[character];
    if (glyph.is_made)
        return glyph;
    if (face.coverage.size() > k_coverage_max) {
        face.coverage.clear();
        face.glyphs.fill({});
    }
    glyph.is_made = true;
    const QChar shown = shown_character(character);
    if (shown.isSpace())
        return glyph;
    constexpr int k_margin = 2;
    const QRect bounds =
        face.metrics.boundingRect(shown).adjusted(-k_margin, -k_margin, k_margin, k_margin);
    QImage picture(bounds.size(), QImage::Format_Grayscale8);
    if (picture.isNull())
        return glyph;
    picture.fill(Qt::black);
    QPainter painter(&picture);
    painter.setFont(face.font);
    painter.setPen(Qt::white);
    painter.drawText(-bounds.topLeft(), QString(shown));
    painter.end();
    keep_ink(face, glyph, picture, -bounds.topLeft());
    return glyph;
}

Font xvt_font_get_default() {
    Font font;
    const QFont shown = QApplication::font();
    font.size = static_cast<std::int16_t>(points_of(font));
    if (shown.bold())
        font.style |= static_cast<std::uint16_t>(FontStyle::bold);
    if (shown.italic())
        font.style |= static_cast<std::uint16_t>(FontStyle::italic);
    return font;
}

Font xvt_font_get_fixed() {
    constexpr int k_points = 10;
    Font font;
    xvt_font_set_family(font, view(to_text(fixed_family())));
    xvt_font_set_size(font, k_points);
    return font;
}

void xvt_font_set_family(Font& font, std::string_view name) {
    auto& families = fonts.families;
    auto found = std::find(families.begin(), families.end(), name);
    if (found == families.end()) {
        if (families.size() == k_families_max || name.empty()) {
            font.family = 0;
            return;
        }
        found = families.insert(families.end(), String(name));
    }
    font.family = static_cast<std::uint16_t>(found - families.begin() + 1);
}

String xvt_font_get_family(Font font) {
    if (font.family == 0 || font.family > fonts.families.size())
        return to_text(QApplication::font().family());
    return fonts.families[font.family - 1U];
}

void xvt_font_set_style(Font& font, std::uint16_t style) {
    font.style = style;
}

void xvt_font_set_size(Font& font, int points) {
    font.size = static_cast<std::int16_t>(std::clamp(points, 1, k_points_max));
}

} // namespace pellux
