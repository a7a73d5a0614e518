#include "windows/toolkit/qt/boxes/ask_boxes.h"

#include <QPainter>
#include <QPainterPath>

#include <cmath>

namespace pellux {
namespace {

// Signs are drawn on a square of 32 by 32.
constexpr int k_square = 32;

constexpr QRgb k_blue = 0xFF2F72C4;
constexpr QRgb k_red = 0xFFC9372C;
constexpr QRgb k_amber = 0xFFF0B429;
constexpr QRgb k_dark = 0xFF33270A;

void draw_disc(QPainter& painter, QRgb color) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(color));
    painter.drawEllipse(QRectF(2, 2, 28, 28));
}

/// A stroke and a dot in one column.
void draw_column(QPainter& painter, QRgb color, double from, double to, double dot) {
    painter.setPen(QPen(QColor(color), 3.4, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(16, from), QPointF(16, to));
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(color));
    painter.drawEllipse(QPointF(16, dot), 2.1, 2.1);
}

void draw_question(QPainter& painter) {
    draw_disc(painter, k_blue);
    QPainterPath hook;
    hook.moveTo(11.6, 12.2);
    hook.cubicTo(11.8, 6.6, 20.6, 6.8, 20.4, 12);
    hook.cubicTo(20.3, 15.2, 16, 15.2, 16, 19.2);
    painter.setPen(QPen(Qt::white, 3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(hook);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::white);
    painter.drawEllipse(QPointF(16, 24), 2.1, 2.1);
}

void draw_warning(QPainter& painter) {
    const QPointF corners[] = {{16, 4.5}, {29, 27}, {3, 27}};
    // The pen rounds the corners.
    painter.setPen(QPen(QColor(k_amber), 3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(QColor(k_amber));
    painter.drawPolygon(corners, 3);
    draw_column(painter, k_dark, 11.5, 18, 23.6);
}

void draw_error(QPainter& painter) {
    draw_disc(painter, k_red);
    painter.setPen(QPen(Qt::white, 3.4, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(11, 11), QPointF(21, 21));
    painter.drawLine(QPointF(21, 11), QPointF(11, 21));
}

void draw_note(QPainter& painter) {
    draw_disc(painter, k_blue);
    draw_column(painter, 0xFFFFFFFF, 15.2, 23, 9.4);
}

} // namespace

QPixmap box_icon(QuestionKind kind, int side, double ratio) {
    const int pixels = static_cast<int>(std::ceil(side * ratio));
    QPixmap icon(pixels, pixels);
    icon.setDevicePixelRatio(ratio);
    icon.fill(Qt::transparent);
    QPainter painter(&icon);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(double(side) / k_square, double(side) / k_square);
    switch (kind) {
    case QuestionKind::ask:
        draw_question(painter);
        break;
    case QuestionKind::warning:
        draw_warning(painter);
        break;
    case QuestionKind::error:
        draw_error(painter);
        break;
    case QuestionKind::note:
    case QuestionKind::string:
    case QuestionKind::file_open:
    case QuestionKind::files_open:
    case QuestionKind::file_save:
    case QuestionKind::font:
    case QuestionKind::dialog:
        draw_note(painter);
        break;
    }
    return icon;
}

} // namespace pellux
