#include "windows/toolkit/draw.h"

#include "windows/toolkit/qt/draw/ink_painter.h"
#include "windows/toolkit/qt/draw/pictures.h"
#include "windows/toolkit/qt/draw/shapes.h"
#include "windows/toolkit/qt/draw/text_runs.h"
#include "windows/toolkit/qt/draw/theme.h"
#include "windows/toolkit/qt/windows/window_table.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace pellux {
namespace {

Ink ink_of(const DrawContext& context, const QColor& copied, Color inverting) {
    if (context.mode == DrawMode::copy)
        return {copied.rgb(), false};
    const QRgb ink = shown_ink(inverting, context.back).rgb();
    return {(ink ^ shown_paper(context.back).rgb()) & RGB_MASK, true};
}

Ink pen_ink(const DrawContext& context) {
    return ink_of(context, shown_pen(context.pen.color, context.back), context.pen.color);
}

Ink brush_ink(const DrawContext& context) {
    return ink_of(context, shown_paper(context.brush.color), context.brush.color);
}

DevicePen device_pen(const Surface& surface) {
    constexpr double k_width_max = 4096;
    const Pen& pen = surface.context.pen;
    const double wanted = std::round(pen.width * unit_scale(surface));
    return {static_cast<int>(std::clamp(wanted, 1.0, k_width_max)), pen.style,
            pen_ink(surface.context)};
}

FontFace& face_of(const Surface& surface) {
    return font_face(surface.context.font, surface.point);
}

int length_in_units(const Surface& surface, int pixels) {
    return static_cast<int>(std::ceil(pixels / unit_scale(surface)));
}

void draw_rect(Window window, const Rect& rect, int radius) {
    Surface* surface = find_fitted_surface(window);
    if (surface == nullptr)
        return;
    const Rect box = to_device(*surface, rect);
    if (is_empty(box))
        return;
    const DevicePen pen = device_pen(*surface);
    const Brush& brush = surface->context.brush;
    const Ink* fill = nullptr;
    const Ink brushed = brush_ink(surface->context);
    if (!brush.is_hollow)
        fill = &brushed;
    if (radius <= 0)
        put_rect(*surface, box, pen, fill);
    else
        put_round_rect(*surface, box, to_device(*surface, radius), pen, fill);
}

} // namespace

void xvt_dwin_set_draw_mode(Window window, DrawMode mode) {
    if (Surface* surface = find_surface(window))
        surface->context.mode = mode;
}

void xvt_dwin_set_pen(Window window, const Pen& pen) {
    if (Surface* surface = find_surface(window))
        surface->context.pen = pen;
}

void xvt_dwin_set_brush(Window window, const Brush& brush) {
    if (Surface* surface = find_surface(window))
        surface->context.brush = brush;
}

void xvt_dwin_set_fore_color(Window window, Color color) {
    if (Surface* surface = find_surface(window))
        surface->context.fore = color;
}

void xvt_dwin_set_back_color(Window window, Color color) {
    if (Surface* surface = find_surface(window))
        surface->context.back = color;
}

void xvt_dwin_set_encoding(Window window, TextEncoding encoding) {
    if (Surface* surface = find_surface(window))
        surface->context.encoding = encoding;
}

void xvt_dwin_set_clip(Window window, const std::optional<Rect>& clip) {
    if (Surface* surface = find_surface(window))
        surface->context.clip = clip;
}

void xvt_dwin_set_font(Window window, Font font) {
    if (Surface* surface = find_surface(window))
        surface->context.font = font;
}

Font xvt_dwin_get_font(Window window) {
    const Surface* surface = find_surface(window);
    return surface == nullptr ? Font{} : surface->context.font;
}

FontMetrics xvt_dwin_get_font_metrics(Window window) {
    const Surface* surface = find_fitted_surface(window);
    if (surface == nullptr)
        return {};
    const QFontMetrics& metrics = face_of(*surface).metrics;
    return {length_in_units(*surface, std::max(0, metrics.leading())),
            length_in_units(*surface, metrics.ascent()),
            length_in_units(*surface, metrics.descent())};
}

int xvt_dwin_get_text_width(Window window, std::string_view text) {
    const Surface* surface = find_fitted_surface(window);
    if (surface == nullptr)
        return 0;
    return length_in_units(*surface,
                           text_width(face_of(*surface), text, surface->context.encoding));
}

void xvt_dwin_draw_text(Window window, int x, int baseline, std::string_view text) {
    Surface* surface = find_fitted_surface(window);
    if (surface == nullptr)
        return;
    const DrawContext& context = surface->context;
    const bool is_underlined =
        (context.font.style & static_cast<std::uint16_t>(FontStyle::underline)) != 0;
    const TextRun run{text,
                      context.encoding,
                      {to_device(*surface, x), to_device(*surface, baseline)},
                      is_underlined};
    const Ink ink = ink_of(context, shown_ink(context.fore, context.back), context.fore);
    draw_text_run(*surface, face_of(*surface), run, ink);
}

void xvt_dwin_draw_line(Window window, Point from, Point to) {
    Surface* surface = find_fitted_surface(window);
    if (surface == nullptr)
        return;
    const DevicePen pen = device_pen(*surface);
    const auto center = [&](int place) {
        const double scale = unit_scale(*surface);
        const double edge = std::floor(place * scale + 0.5);
        return edge + (std::floor((place + 1.0) * scale + 0.5) - edge) / 2;
    };
    if (from.x != to.x && from.y != to.y) {
        put_slanted_line(*surface, {center(from.x), center(from.y)}, {center(to.x), center(to.y)},
                         pen);
        return;
    }
    // The pen lies around the way of a line that is one pixel wide.
    const int before = (pen.width - 1) / 2;
    const auto [left, right] = std::minmax(from.x, to.x);
    const auto [top, bottom] = std::minmax(from.y, to.y);
    Rect box{to_device(*surface, top), to_device(*surface, left), to_device(*surface, bottom + 1.0),
             to_device(*surface, right + 1.0)};
    const bool is_upright = from.y != to.y;
    if (is_upright) {
        box.left -= before;
        box.right = box.left + pen.width;
    } else {
        box.top -= before;
        box.bottom = box.top + pen.width;
    }
    put_line(*surface, box, is_upright, pen);
}

void xvt_dwin_draw_rect(Window window, const Rect& rect) {
    draw_rect(window, rect, 0);
}

void xvt_dwin_draw_round_rect(Window window, const Rect& rect, int radius) {
    draw_rect(window, rect, radius);
}

void xvt_dwin_clear(Window window, Color color) {
    Surface* surface = find_fitted_surface(window);
    if (surface == nullptr)
        return;
    const DrawContext& context = surface->context;
    fill_box(*surface, box_of(surface->image.rect()), ink_of(context, shown_paper(color), color));
}

bool xvt_dwin_draw_image(Window window, int image, const Rect& rect, ImageLook look) {
    Surface* surface = find_fitted_surface(window);
    if (surface == nullptr)
        return false;
    const Rect box = to_device(*surface, rect);
    if (is_empty(box))
        return true;
    const QPixmap pixmap = picture(image, std::min(width(box), height(box)), look);
    if (pixmap.isNull())
        return false;
    const int left = box.left + (width(box) - pixmap.width()) / 2;
    const int top = box.top + (height(box) - pixmap.height()) / 2;
    InkPainter ink_painter(*surface, {top, left, top + pixmap.height(), left + pixmap.width()}, {});
    if (QPainter* painter = ink_painter.painter())
        painter->drawPixmap(left, top, pixmap);
    return true;
}

void xvt_dwin_scroll_rect(Window window, const Rect& rect, int right, int down) {
    Surface* surface = find_fitted_surface(window);
    if (surface == nullptr)
        return;
    const Rect box = clipped(*surface, to_device(*surface, rect));
    const double scale = unit_scale(*surface);
    // An update event reaches only a part of what would move.
    if (scale != std::floor(scale) || surface->is_updating) {
        ask_for_box(*surface, box);
        return;
    }
    scroll_box(*surface, box, to_device(*surface, right), to_device(*surface, down));
}

void xvt_dwin_invalidate_rect(Window window, const Rect& rect) {
    if (Surface* surface = find_fitted_surface(window))
        ask_for_box(*surface, to_device(*surface, rect));
}

void xvt_dwin_update(Window window) {
    if (Surface* surface = find_surface(window))
        tell_pending(*surface);
}

} // namespace pellux
