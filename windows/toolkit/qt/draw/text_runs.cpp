#include "windows/toolkit/qt/draw/text_runs.h"

#include "windows/toolkit/qt/draw/ink_painter.h"
#include "windows/toolkit/qt/text_conversion.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace pellux {
namespace {

/// Ways of the pen through long texts are longer than a coordinate can tell.
using Advance = std::int64_t;

Advance latin1_width(const FontFace& face, std::string_view text) {
    if (face.common_advance != 0)
        return static_cast<Advance>(text.size()) * face.common_advance;
    Advance advance = 0;
    for (const char character : text)
        advance += face.advances[static_cast<unsigned char>(character)];
    return advance;
}

/// Draws what falls into `clip`; answers the box that it changed.
Rect draw_latin1(const Raster& raster, const Rect& clip, FontFace& face, const TextRun& run,
                 Ink ink) {
    Rect changed;
    Advance pen = run.at.x;
    std::size_t i = 0;
    const Advance first = Advance{clip.left} - face.reach;
    const Advance end = Advance{clip.right} + face.reach;
    if (face.common_advance != 0 && pen < first) {
        i = std::min(run.text.size(),
                     static_cast<std::size_t>((first - pen) / face.common_advance));
        pen += static_cast<Advance>(i) * face.common_advance;
    }
    for (; i < run.text.size() && pen < end; ++i) {
        const auto character = static_cast<unsigned char>(run.text[i]);
        const Advance at = pen;
        pen += face.advances[character];
        if (at < first || character == ' ' || is_control(character))
            continue;
        const Glyph& glyph = glyph_of(face, character);
        const int left = static_cast<int>(at) + glyph.left;
        const int top = run.at.y + glyph.top;
        const Rect box = common_part(clip, {top, left, top + glyph.height, left + glyph.width});
        if (is_empty(box))
            continue;
        put_mask(raster, clip, {left, top}, mask_of(face, glyph), ink);
        changed = around_both(changed, box);
    }
    return changed;
}

QString shown_text(std::string_view text) {
    QString shown = to_qstring(text);
    for (QChar& character : shown)
        if (is_control(character.unicode()))
            character = QLatin1Char(' ');
    return shown;
}

/// Takes a piece off a text, so that long ones need not be laid out as a whole.
QString take_piece(QStringView& text) {
    constexpr qsizetype k_length_max = 256;
    qsizetype length = text.size();
    if (length > k_length_max) {
        const qsizetype blank = text.first(k_length_max).lastIndexOf(QLatin1Char(' '));
        length = blank >= 0 ? blank + 1
                            : k_length_max - (text[k_length_max - 1].isHighSurrogate() ? 1 : 0);
    }
    const QString piece = text.first(length).toString();
    text = text.sliced(length);
    return piece;
}

/// The advance through `text`, or some advance that is longer than `enough`.
Advance utf8_width(const FontFace& face, QStringView text, Advance enough) {
    Advance advance = 0;
    while (!text.isEmpty() && advance <= enough)
        advance += face.metrics.horizontalAdvance(take_piece(text));
    return advance;
}

void draw_utf8(Surface& surface, Rect part, FontFace& face, const TextRun& run, Ink ink) {
    const QString whole = shown_text(run.text);
    const Advance room = Advance{part.right} - run.at.x;
    const Advance width = utf8_width(face, whole, room);
    part.right -= static_cast<int>(std::max<Advance>(0, room - width - face.reach));
    InkPainter ink_painter(surface, part, ink);
    QPainter* painter = ink_painter.painter();
    if (painter == nullptr)
        return;
    painter->setFont(face.font);
    QStringView rest = whole;
    for (Advance pen = run.at.x; !rest.isEmpty() && pen < Advance{part.right} + face.reach;) {
        const QString piece = take_piece(rest);
        const Advance end = pen + face.metrics.horizontalAdvance(piece);
        if (end + face.reach > part.left)
            painter->drawText(QPointF(static_cast<qreal>(pen), run.at.y), piece);
        pen = end;
    }
}

int limited(Advance advance) {
    return static_cast<int>(std::min<Advance>(advance, std::numeric_limits<int>::max()));
}

} // namespace

int text_width(FontFace& face, std::string_view text, TextEncoding encoding) {
    if (encoding == TextEncoding::latin_1)
        return limited(latin1_width(face, text));
    return limited(utf8_width(face, shown_text(text), std::numeric_limits<int>::max()));
}

void draw_text_run(Surface& surface, FontFace& face, const TextRun& run, Ink ink) {
    const Rect line{run.at.y - face.reach, run.at.x - face.reach, run.at.y + face.reach,
                    std::numeric_limits<int>::max()};
    const Rect part = clipped(surface, line);
    if (is_empty(part) || run.text.empty())
        return;
    if (run.encoding == TextEncoding::latin_1) {
        const Raster raster = raster_of(surface);
        for_each_clip(surface, part, [&](const Rect& clip) {
            show_box(surface, draw_latin1(raster, clip, face, run, ink));
        });
    } else {
        draw_utf8(surface, part, face, run, ink);
    }
    if (!run.is_underlined)
        return;
    const int top = run.at.y + face.underline_top;
    const Advance end = Advance{run.at.x} + text_width(face, run.text, run.encoding);
    const Rect underline{top, run.at.x, top + face.underline_height, limited(end)};
    for_each_clip(surface, underline, [&](const Rect& piece) {
        put_box(raster_of(surface), piece, ink);
        show_box(surface, piece);
    });
}

} // namespace pellux
