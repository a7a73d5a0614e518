#include "windows/toolkit/color.h"

#include <QGuiApplication>
#include <QPalette>

namespace pellux {
namespace {

QPalette::ColorRole role_of(ThemeColor which) {
    switch (which) {
    case ThemeColor::window:
        return QPalette::Window;
    case ThemeColor::text:
        return QPalette::WindowText;
    case ThemeColor::base:
        return QPalette::Base;
    case ThemeColor::highlight:
        return QPalette::Highlight;
    case ThemeColor::highlighted_text:
        return QPalette::HighlightedText;
    }
    return QPalette::Window;
}

} // namespace

Color xvt_scr_get_color(ThemeColor which) {
    return static_cast<Color>(QGuiApplication::palette().color(role_of(which)).rgb() & 0xFFFFFF);
}

} // namespace pellux
