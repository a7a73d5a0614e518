#include "windows/toolkit/qt/draw/ink_painter.h"

namespace pellux {

InkPainter::InkPainter(Surface& surface, const Rect& bounds, Ink ink)
    : surface_(surface), part_(clipped(surface, bounds)), ink_(ink),
      color_(ink.inverts ? QColor(Qt::white) : QColor::fromRgb(ink.bits)) {
    if (is_empty(part_))
        return;
    if (!ink.inverts) {
        painter_ = &open_painter(surface, part_);
    } else {
        shape_ = QImage(width(part_), height(part_), QImage::Format_Grayscale8);
        if (shape_.isNull())
            return;
        shape_.fill(Qt::black);
        painter_ = &shape_painter_.emplace(&shape_);
        painter_->translate(-part_.left, -part_.top);
    }
    painter_->setRenderHint(QPainter::Antialiasing, !ink.inverts);
    painter_->setPen(color_);
    painter_->setBrush(Qt::NoBrush);
}

InkPainter::~InkPainter() {
    if (painter_ == nullptr)
        return;
    for_each_clip(surface_, part_, [&](const Rect& piece) {
        show_box(surface_, piece);
        if (!ink_.inverts)
            return;
        shape_painter_.reset();
        const Raster raster = raster_of(surface_);
        for (int y = piece.top; y < piece.bottom; ++y) {
            const Mask row{shape_.constScanLine(y - part_.top), shape_.width(), 1};
            put_mask(raster, piece, {part_.left, y}, row, ink_);
        }
    });
}

} // namespace pellux
