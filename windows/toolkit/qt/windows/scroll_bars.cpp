#include "windows/toolkit/qt/windows/scroll_bars.h"

#include "windows/toolkit/qt/windows/control_events.h"
#include "windows/toolkit/qt/windows/window_table.h"

#include <QApplication>
#include <QStyle>
#include <QStyleOptionSlider>

#include <algorithm>

namespace pellux {
namespace {

int last_position(const ScrollRange& range) {
    return std::max(0, range.end - range.page);
}

ScrollBarControl* bar_of(Window window) {
    return dynamic_cast<ScrollBarControl*>(widget_of<QScrollBar>(window));
}

} // namespace

ScrollBarControl::ScrollBarControl(Window control, Qt::Orientation orientation)
    : QScrollBar(orientation) {
    setFocusPolicy(Qt::NoFocus);
    show_range();
    connect(this, &QAbstractSlider::valueChanged, this, [this, control](int value) {
        if (OwnChange::is_under_way())
            return;
        range_.position = std::min(value, last_position(range_));
        tell_parent(control, ControlAction::scrolled);
    });
    connect(this, &QAbstractSlider::sliderReleased, this, &ScrollBarControl::show_range);
}

void ScrollBarControl::set_range(const ScrollRange& range) {
    ScrollRange wanted{std::max(0, range.end), std::max(0, range.page), std::max(1, range.line),
                       range.position};
    wanted.position = std::clamp(wanted.position, 0, last_position(wanted));
    if (wanted == range_ && !waits_)
        return;
    range_ = wanted;
    // The bar may have missed that the button was let go, behind a box.
    waits_ = isSliderDown() && QGuiApplication::mouseButtons().testFlag(Qt::LeftButton);
    if (!waits_)
        show_range();
}

void ScrollBarControl::show_range() {
    const OwnChange change;
    const int last = last_position(range_);
    const bool is_same = maximum() == last && pageStep() == range_.page;
    const bool may_move = !is_same || thumb_pixel(range_.position) != thumb_pixel(value());
    const QRect before = may_move ? thumb() : QRect();
    waits_ = false;
    setRange(0, last);
    setPageStep(range_.page);
    setSingleStep(range_.line);
    setValue(range_.position);
    setEnabled(last > 0);
    if (const QRect now = may_move ? thumb() : QRect(); now != before) {
        // Its edges may reach over it.
        constexpr int k_edge = 2;
        update(before.united(now).adjusted(-k_edge, -k_edge, k_edge, k_edge));
    }
}

QRect ScrollBarControl::thumb() const {
    QStyleOptionSlider option;
    initStyleOption(&option);
    return style()->subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarSlider, this);
}

/// Where the thumb stands, to less than a pixel.
int ScrollBarControl::thumb_pixel(int position) const {
    const int length = std::max(width(), height());
    return QStyle::sliderPositionFromValue(minimum(), maximum(), position, length);
}

/// Painting the bar costs more than a page of text, as Qt gives what is high to several threads. A
/// change of our own asks for what it moves alone.
void ScrollBarControl::sliderChange(SliderChange change) {
    if (!OwnChange::is_under_way())
        QScrollBar::sliderChange(change);
}

void xvt_sbar_set_range(Window bar, const ScrollRange& range) {
    if (ScrollBarControl* shown = bar_of(bar))
        shown->set_range(range);
}

int xvt_sbar_get_position(Window bar) {
    const ScrollBarControl* shown = bar_of(bar);
    return shown == nullptr ? 0 : shown->position();
}

int xvt_sbar_get_thickness() {
    return QApplication::style()->pixelMetric(QStyle::PM_ScrollBarExtent);
}

} // namespace pellux
