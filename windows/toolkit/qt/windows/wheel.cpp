#include "windows/toolkit/qt/windows/wheel.h"

#include "windows/toolkit/qt/windows/keys.h"
#include "windows/toolkit/qt/windows/places.h"

#include <QApplication>
#include <QWheelEvent>

#include <cmath>

namespace pellux {
namespace {

/// How far, in the desktop's directions: to the left and up.
QPointF distance(const QWheelEvent& event, bool is_by_pixels, double scale) {
    const QPointF moved =
        is_by_pixels ? QPointF(event.pixelDelta()) * scale : QPointF(event.angleDelta());
    // With Alt the axes come exchanged, but from Wayland.
    const bool is_turned = event.modifiers().testFlag(Qt::AltModifier) &&
                           !QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
    return is_turned ? moved.transposed() : moved;
}

} // namespace

WheelEvent wheel_event(const WindowRecord& record, const QWheelEvent& event) {
    // Under X these are no pixels, but steps of the wheel.
    const bool is_by_pixels =
        event.hasPixelDelta() && QGuiApplication::platformName() != QLatin1String("xcb");
    const bool is_device = record.surface && record.surface->units == PixelUnits::device;
    const QPointF moved = distance(event, is_by_pixels, is_device ? record.surface->ratio : 1);
    return {.at = to_units(record, event.position()),
            .with = modifiers(event.modifiers()),
            .right = -static_cast<int>(std::lround(moved.x())),
            .down = -static_cast<int>(std::lround(moved.y())),
            .is_by_pixels = is_by_pixels,
            .lines = QApplication::wheelScrollLines()};
}

} // namespace pellux
