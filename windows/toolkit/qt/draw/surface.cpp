#include "windows/toolkit/qt/draw/surface.h"

#include "windows/toolkit/qt/draw/fonts.h"
#include "windows/toolkit/qt/draw/pictures.h"
#include "windows/toolkit/qt/draw/theme.h"

#include <QPaintEvent>
#include <QWidget>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace pellux {
namespace {

Raster raster_of(QImage& image) {
    return {reinterpret_cast<std::uint32_t*>(image.bits()),
            image.bytesPerLine() / static_cast<qsizetype>(sizeof(std::uint32_t)), image.width(),
            image.height()};
}

bool is_whole(double ratio) {
    return ratio == std::floor(ratio);
}

/// The device pixels that a part of the widget may show. At a broken ratio the widget may begin
/// inside a pixel.
Rect device_box(const Surface& surface, const QRect& part) {
    const double ratio = surface.ratio;
    const int slack = is_whole(ratio) ? 0 : 1;
    const Rect box = box_of(part);
    const auto low = [&](int place) { return static_cast<int>(std::floor(place * ratio)) - slack; };
    const auto high = [&](int place) { return static_cast<int>(std::ceil(place * ratio)) + slack; };
    return common_part({low(box.top), low(box.left), high(box.bottom), high(box.right)},
                       box_of(surface.image.rect()));
}

/// The part of the widget in which some device pixels may be shown.
QRect widget_part(const Surface& surface, const Rect& box) {
    const double ratio = surface.ratio;
    const int slack = is_whole(ratio) ? 0 : 1;
    const auto low = [&](int place) {
        return static_cast<int>(std::floor((place - slack) / ratio));
    };
    const auto high = [&](int place) {
        return static_cast<int>(std::ceil((place + slack) / ratio));
    };
    return qrect_of({low(box.top), low(box.left), high(box.bottom), high(box.right)});
}

/// In the window's units, rounded outwards.
Rect to_units(const Surface& surface, const Rect& box) {
    const double scale = unit_scale(surface);
    const auto low = [&](int place) { return static_cast<int>(std::floor(place / scale)); };
    const auto high = [&](int place) { return static_cast<int>(std::ceil(place / scale)); };
    return {low(box.top), low(box.left), high(box.bottom), high(box.right)};
}

/// Where the image begins on what `painter` draws on: at a whole device pixel, where the widget's
/// own edge is taken to be.
QTransform pixel_by_pixel(const QPainter& painter) {
    const QTransform device = painter.deviceTransform();
    return QTransform::fromTranslate(std::round(device.dx()), std::round(device.dy())) *
           device.inverted();
}

/// Lets the image begin at a row of the store.
void place_image(Surface& surface, int row, QSize size) {
    const qsizetype stride = surface.store.bytesPerLine();
    surface.first_row = row;
    surface.image = QImage(surface.store.bits() + row * stride, size.width(), size.height(), stride,
                           QImage::Format_RGB32);
}

/// Moves the rows of `box` by beginning elsewhere in the store, and moves what lies outside back.
/// False where that would be more than a part of the image.
bool slide(Surface& surface, const Rect& box, int down) {
    const int columns = surface.image.width();
    const int rows = surface.image.height();
    const int room = surface.store.height() - rows;
    const auto area = [](int a, int b) { return std::int64_t{a} * b; };
    if (std::abs(down) > room || 4 * area(width(box), height(box)) < 3 * area(columns, rows))
        return false;
    const Raster store = raster_of(surface.store);
    int from = surface.first_row;
    if (from - down < 0 || from - down > room) {
        const int start = down < 0 ? 0 : room;
        move_rows(store, 0, columns, from, start, rows);
        from = start;
    }
    const int to = from - down;
    move_rows(store, 0, box.left, from, to, rows);
    move_rows(store, box.right, columns, from, to, rows);
    move_rows(store, box.left, box.right, from, to, box.top);
    move_rows(store, box.left, box.right, from + box.bottom, to + box.bottom, rows - box.bottom);
    place_image(surface, to, surface.image.size());
    return true;
}

void blit(Surface& surface, const QPaintEvent& event) {
    close_painter(surface);
    QPainter painter(surface.widget);
    if (surface.ratio == 1) {
        for (const QRect& part : event.region())
            painter.drawImage(part.topLeft(), surface.image, part);
        return;
    }
    painter.setTransform(pixel_by_pixel(painter));
    for (const QRect& part : event.region()) {
        const QRect box = qrect_of(device_box(surface, part));
        painter.drawImage(box.topLeft(), surface.image, box);
    }
}

} // namespace

void fit_surface(Surface& surface) {
    constexpr double k_points_of_inch = 72;
    const double ratio = surface.widget->devicePixelRatioF();
    surface.point = surface.widget->logicalDpiY() / k_points_of_inch * ratio;
    // Products that should be whole may be a little more.
    constexpr double k_rounding = 1e-6;
    const auto pixels = [&](int length) {
        return std::max(1, static_cast<int>(std::ceil(length * ratio - k_rounding)));
    };
    const QSize size(pixels(surface.widget->width()), pixels(surface.widget->height()));
    const bool keeps = surface.ratio == ratio && !surface.image.isNull();
    if (keeps && surface.image.size() == size)
        return;
    close_painter(surface);
    // Room for some scrolling before all rows must be moved.
    QImage store(size.width(), size.height() + size.height() / 2, QImage::Format_RGB32);
    if (!store.isNull())
        store.fill(shown_paper(Color::white));
    QRegion kept;
    if (keeps && !store.isNull()) {
        const QRect common = QRect(QPoint(), size) & surface.image.rect();
        for (int y = 0; y < common.height(); ++y)
            std::memcpy(store.scanLine(y), surface.image.constScanLine(y),
                        static_cast<std::size_t>(common.width()) * sizeof(QRgb));
        kept = QRegion(common) - surface.pending;
    }
    surface.store = std::move(store);
    surface.image = {};
    if (!surface.store.isNull())
        place_image(surface, 0, size);
    surface.ratio = ratio;
    surface.pending = QRegion(surface.image.rect()) - kept;
    surface.announced = {};
    if (!surface.pending.isEmpty())
        surface.widget->update();
}

void renew_surface(Surface& surface) {
    forget_fonts();
    forget_pictures();
    ask_for_box(surface, box_of(surface.image.rect()));
}

void paint_surface(Surface& surface, const QPaintEvent& event) {
    fit_surface(surface);
    surface.announced = {};
    surface.is_painting = true;
    surface.changed = {};
    if (!tell_pending(surface))
        return;
    surface.is_painting = false;
    blit(surface, event);
    QRegion rest(qrect_of(surface.changed));
    for (const QRect& part : event.region())
        rest -= qrect_of(device_box(surface, part));
    rest += surface.pending;
    if (!rest.isEmpty())
        show_box(surface, box_of(rest.boundingRect()));
}

Point to_units(const Surface& surface, QPointF place) {
    const double scale = surface.units == PixelUnits::device ? surface.ratio : 1;
    constexpr double k_rounding = 1e-6;
    return {static_cast<int>(std::floor(place.x() * scale + k_rounding)),
            static_cast<int>(std::floor(place.y() * scale + k_rounding))};
}

double unit_scale(const Surface& surface) {
    return surface.units == PixelUnits::device ? 1 : surface.ratio;
}

int to_device(const Surface& surface, double coordinate) {
    constexpr double k_far = 1 << 28;
    return static_cast<int>(
        std::clamp(std::floor(coordinate * unit_scale(surface) + 0.5), -k_far, k_far));
}

Rect to_device(const Surface& surface, const Rect& rect) {
    return {to_device(surface, rect.top), to_device(surface, rect.left),
            to_device(surface, rect.bottom), to_device(surface, rect.right)};
}

Raster raster_of(Surface& surface) {
    return raster_of(surface.image);
}

Rect clipped(const Surface& surface, const Rect& box) {
    const Rect part = common_part(box, {0, 0, surface.image.height(), surface.image.width()});
    const auto& clip = surface.context.clip;
    return clip ? common_part(part, to_device(surface, *clip)) : part;
}

QPainter& open_painter(Surface& surface, const Rect& clip) {
    if (!surface.painter)
        surface.painter.emplace(&surface.image);
    if (surface.is_updating)
        surface.painter->setClipRegion(surface.updating & qrect_of(clip));
    else
        surface.painter->setClipRect(qrect_of(clip));
    return *surface.painter;
}

void close_painter(Surface& surface) {
    surface.painter.reset();
}

void show_box(Surface& surface, const Rect& box) {
    if (is_empty(box))
        return;
    if (surface.is_painting) {
        surface.changed = around_both(surface.changed, box);
        return;
    }
    if (!is_empty(surface.announced) && contains(surface.announced, box))
        return;
    surface.announced = around_both(surface.announced, box);
    surface.widget->update(widget_part(surface, surface.announced));
}

void scroll_box(Surface& surface, const Rect& box, int right, int down) {
    if (is_empty(box))
        return;
    const QRect area = qrect_of(box);
    const QRegion uncovered = QRegion(area) - area.translated(right, down);
    close_painter(surface);
    if (uncovered != area && (right != 0 || !slide(surface, box, down)))
        move_box(raster_of(surface), box, right, down);
    if (const QRegion moved = surface.pending & area; !moved.isEmpty()) {
        surface.pending -= area;
        surface.pending += (moved.translated(right, down) & area) + (moved & uncovered);
    }
    show_box(surface, box);
}

void ask_for_box(Surface& surface, const Rect& box) {
    const Rect part = common_part(box, box_of(surface.image.rect()));
    if (is_empty(part))
        return;
    surface.pending += qrect_of(part);
    show_box(surface, part);
}

bool tell_pending(Surface& surface) {
    if (surface.pending.isEmpty() || surface.is_updating)
        return true;
    surface.updating = std::exchange(surface.pending, {});
    surface.is_updating = true;
    const Rect box = box_of(surface.updating.boundingRect());
    if (!surface.update(surface.window, to_units(surface, box)))
        return false;
    surface.is_updating = false;
    surface.updating = {};
    return true;
}

} // namespace pellux
