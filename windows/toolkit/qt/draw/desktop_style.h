#pragma once

#include <QProxyStyle>

namespace pellux {

/// Qt's own look, which is what a desktop without one of its own gets, with some things mended that
/// a user would miss in it: edges where dark stands on dark, the place of the keyboard's focus in
/// the menu bar, titles and disabled items without a shadow, buttons on tabs in the theme's
/// colours.
class DesktopStyle : public QProxyStyle {
public:
    DesktopStyle();

    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                            QPainter* painter, const QWidget* widget) const override;
};

} // namespace pellux
