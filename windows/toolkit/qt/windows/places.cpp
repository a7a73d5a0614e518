#include "windows/toolkit/qt/windows/places.h"

namespace pellux {

Point to_units(const WindowRecord& record, QPointF place) {
    if (record.surface)
        return to_units(*record.surface, place);
    const QPoint at = place.toPoint();
    return {at.x(), at.y()};
}

QPointF to_widget(const WindowRecord& record, Point at) {
    const bool is_device = record.surface && record.surface->units == PixelUnits::device;
    const double ratio = is_device ? record.widget->devicePixelRatioF() : 1;
    return {at.x / ratio, at.y / ratio};
}

int control_at(const WindowRecord& record, QPointF place) {
    const QWidget* part = record.widget->childAt(place.toPoint());
    for (; part != nullptr && part != record.widget; part = part->parentWidget())
        if (const WindowRecord* child = find_window(window_of(*part));
            child != nullptr && child->parent == record.handle)
            return child->id;
    return 0;
}

} // namespace pellux
