#include "windows/toolkit/qt/draw/desktop_style.h"

#include <QPainter>
#include <QStyleOption>

namespace pellux {
namespace {

/// `percent` of the text's colour on the window's.
QColor mixed(const QPalette& palette, int percent) {
    const QColor text = palette.color(QPalette::WindowText);
    const QColor ground = palette.color(QPalette::Window);
    const auto mix = [percent](int ink, int paper) {
        return (ink * percent + paper * (100 - percent)) / 100;
    };
    return {mix(text.red(), ground.red()), mix(text.green(), ground.green()),
            mix(text.blue(), ground.blue())};
}

bool is_dark(const QPalette& palette) {
    return palette.color(QPalette::Window).lightness() < 128;
}

QColor edge_color(const QPalette& palette) {
    constexpr int k_percent = 30;
    return mixed(palette, k_percent);
}

/// Where the desktop's shadow would be all that parts what lies above from what is below.
void draw_edge(const QStyleOption& option, QPainter& painter) {
    painter.save();
    painter.setPen(edge_color(option.palette));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(option.rect.adjusted(0, 0, -1, -1));
    painter.restore();
}

/// The same of a window's title, along the corners that Qt's mask of the frame leaves.
void draw_title_edge(const QStyleOption& option, QPainter& painter) {
    constexpr int k_corner = 5;
    const QRect& rect = option.rect;
    painter.save();
    painter.setPen(edge_color(option.palette));
    painter.drawLine(rect.left() + k_corner, rect.top(), rect.right() - k_corner, rect.top());
    for (const int side : {1, -1}) {
        const QPoint corner = side > 0 ? rect.topLeft() : rect.topRight();
        const auto line = [&](int x, int y, int to_x, int to_y) {
            painter.drawLine(corner + QPoint(x * side, y), corner + QPoint(to_x * side, to_y));
        };
        line(3, 1, 4, 1);
        line(2, 2, 2, 2);
        line(1, 3, 1, 4);
        line(0, k_corner, 0, rect.height() - 1);
    }
    painter.restore();
}

void draw_close_mark(const QStyleOption& option, QPainter& painter) {
    constexpr int k_ground = 20;
    constexpr int k_quiet = 70;
    const bool is_under_pointer = option.state.testFlag(QStyle::State_MouseOver);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    if (is_under_pointer) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(mixed(option.palette, k_ground));
        painter.drawRoundedRect(option.rect, 2, 2);
    }
    painter.setPen(QPen(mixed(option.palette, is_under_pointer ? 100 : k_quiet), 1.5));
    const QRectF mark =
        QRectF(0, 0, 7, 7).translated(QRectF(option.rect).center() - QPointF(3.5, 3.5));
    painter.drawLine(mark.topLeft(), mark.bottomRight());
    painter.drawLine(mark.topRight(), mark.bottomLeft());
    painter.restore();
}

} // namespace

DesktopStyle::DesktopStyle() : QProxyStyle(QStringLiteral("Fusion")) {}

int DesktopStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                            QStyleHintReturn* data) const {
    return hint == SH_EtchDisabledText ? 0 : QProxyStyle::styleHint(hint, option, widget, data);
}

void DesktopStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                                 QPainter* painter, const QWidget* widget) const {
    if (element == PE_IndicatorTabClose) {
        draw_close_mark(*option, *painter);
        return;
    }
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    if ((element == PE_PanelMenu || element == PE_FrameWindow) && is_dark(option->palette))
        draw_edge(*option, *painter);
}

void DesktopStyle::drawControl(ControlElement element, const QStyleOption* option,
                               QPainter* painter, const QWidget* widget) const {
    const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    if (item == nullptr) {
        QProxyStyle::drawControl(element, option, painter, widget);
        return;
    }
    QStyleOptionMenuItem shown(*item);
    // The item of a bar that the keys go to looks as if its menu were open.
    if (element == CE_MenuBarItem && widget != nullptr && widget->hasFocus() &&
        shown.state.testFlag(State_Selected))
        shown.state |= State_Sunken;
    QProxyStyle::drawControl(element, &shown, painter, widget);
    const bool is_separator =
        element == CE_MenuItem && item->menuItemType == QStyleOptionMenuItem::Separator;
    if (is_separator && item->text.isEmpty() && is_dark(item->palette)) {
        constexpr int k_margin_px = 5;
        const int y = item->rect.center().y();
        painter->setPen(edge_color(item->palette));
        painter->drawLine(item->rect.left() + k_margin_px, y, item->rect.right() - k_margin_px, y);
    }
}

void DesktopStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                      QPainter* painter, const QWidget* widget) const {
    const auto* bar = qstyleoption_cast<const QStyleOptionTitleBar*>(option);
    if (control != CC_TitleBar || bar == nullptr) {
        QProxyStyle::drawComplexControl(control, option, painter, widget);
        return;
    }
    const bool is_active = (bar->titleBarState & State_Active) != 0;
    QStyleOptionTitleBar untitled(*bar);
    untitled.text.clear();
    // Qt's marks on the buttons are white where the window is active and black elsewhere.
    if (!is_active && is_dark(bar->palette)) {
        untitled.titleBarState |= State_Active;
        untitled.palette.setColor(QPalette::Highlight, bar->palette.color(QPalette::Window));
    }
    QProxyStyle::drawComplexControl(control, &untitled, painter, widget);
    if (is_dark(bar->palette))
        draw_title_edge(*bar, *painter);
    const QRect place = subControlRect(CC_TitleBar, bar, SC_TitleBarLabel, widget);
    painter->setPen(
        bar->palette.color(is_active ? QPalette::HighlightedText : QPalette::WindowText));
    painter->drawText(place, Qt::AlignCenter,
                      painter->fontMetrics().elidedText(bar->text, Qt::ElideRight, place.width()));
}

} // namespace pellux
