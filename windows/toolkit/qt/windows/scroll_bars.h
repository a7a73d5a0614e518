#pragma once

#include "windows/toolkit/control.h"

#include <QScrollBar>

namespace pellux {

/// A scroll bar in a window. While the user holds its thumb, a new range waits until it is let go.
class ScrollBarControl : public QScrollBar {
public:
    ScrollBarControl(Window control, Qt::Orientation orientation);

    void set_range(const ScrollRange& range);
    [[nodiscard]] int position() const { return range_.position; }

protected:
    void sliderChange(SliderChange change) override;

private:
    void show_range();
    [[nodiscard]] QRect thumb() const;
    [[nodiscard]] int thumb_pixel(int position) const;

    ScrollRange range_;  ///< as it was set; its position is what the user made of it since
    bool waits_ = false; ///< the bar does not show it yet
};

} // namespace pellux
