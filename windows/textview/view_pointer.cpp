#include "windows/textview/view_pointer.h"

#include "core/text/text_words.h"
#include "windows/textview/view_drawing.h"
#include "windows/toolkit/timer.h"

#include <algorithm>
#include <cstdlib>

namespace pellux {
namespace {

constexpr std::int64_t k_scroll_ms = 40;
constexpr int k_notch = 120;

/// How far a coordinate lies outside, negative before.
int outside(int at, int end) {
    return at < 0 ? at : std::max(0, at - end + 1);
}

/// Steps for something held so far outside: one at once, faster further away.
int steps(int distance, int of) {
    return distance == 0 ? 0 : distance / of + (distance > 0 ? 1 : -1);
}

} // namespace

TextRange ViewPointer::unit_at(ByteOffset offset) const {
    const TextDocument& document = view_.editing.document;
    if (unit_ == Unit::word)
        return word_at(document, offset);
    if (unit_ == Unit::line) {
        const std::int64_t line = line_of(point_at(document, offset));
        return {line_start(document, line), line_start(document, line + 1)};
    }
    return {offset, offset};
}

/// From the stretch where it began to the one at a place, the caret at the end there.
void ViewPointer::select_to(Point at) {
    const TextRange there = unit_at(offset_at_point(view_, at));
    const TextRange here{offset_of(first_->point), offset_of(last_->point)};
    if (there.start < here.start)
        select_range(view_.editing, here.end, there.start);
    else
        select_range(view_.editing, here.start, std::max(there.end, here.end));
}

void ViewPointer::on_down(const PointerDownEvent& down) {
    const DrawGuard guard(view_);
    const ByteOffset offset = offset_at_point(view_, down.at);
    if (down.button == PointerButton::right) {
        // The menu that follows is about the selection, or what is there.
        const TextRange range = selection(view_.editing);
        if (offset < range.start || offset >= range.end)
            select_range(view_.editing, offset, offset);
    }
    if (down.button != PointerButton::left)
        return;
    const bool goes_on = down.with.shift && down.clicks == 1;
    unit_ = down.clicks == 2 ? Unit::word : down.clicks >= 3 ? Unit::line : Unit::character;
    TextRange begun = unit_at(offset);
    if (goes_on) {
        const TextEditing& editing = view_.editing;
        const ByteOffset anchor =
            editing.anchor == nullptr ? caret_offset(editing) : offset_of(editing.anchor->point);
        begun = {anchor, anchor};
    }
    const TextDocument& document = view_.editing.document;
    first_ = make_owned<TextMark>(point_at(document, begun.start), false);
    last_ = make_owned<TextMark>(point_at(document, begun.end), false);
    at_ = down.at;
    xvt_win_trap_pointer(view_.target);
    select_to(down.at);
    if (!guard.is_gone() && down.clicks < 3)
        show_caret(view_);
}

void ViewPointer::on_move(const PointerMoveEvent& move) {
    if (unit_ == Unit::none || !xvt_win_has_pointer(view_.target))
        return;
    at_ = move.at;
    const bool is_outside = outside(at_.x, view_.width) != 0 || outside(at_.y, view_.height) != 0;
    if (is_outside && timer_ == TimerId::none) {
        timer_ = xvt_timer_create(view_.target, k_scroll_ms);
    } else if (!is_outside && timer_ != TimerId::none) {
        xvt_timer_destroy(timer_);
        timer_ = TimerId::none;
    }
    if (!is_outside)
        select_to(at_);
}

void ViewPointer::on_up(const PointerUpEvent& up) {
    if (up.button == PointerButton::left || up.button == PointerButton::none)
        end_drag();
}

void ViewPointer::end_drag() {
    if (unit_ == Unit::none)
        return;
    unit_ = Unit::none;
    first_.reset();
    last_.reset();
    if (timer_ != TimerId::none)
        xvt_timer_destroy(timer_);
    timer_ = TimerId::none;
    xvt_win_release_pointer(view_.target);
}

void ViewPointer::scroll_towards(Point at) {
    const int down = steps(outside(at.y, view_.height), view_.line_height);
    const int right = steps(outside(at.x, view_.width), view_.line_height);
    const DrawGuard guard(view_);
    if (down != 0)
        set_top_line(view_, top_line(view_) + down);
    if (right != 0 && !guard.is_gone())
        set_hscroll(view_, std::min(view_.hscroll + right * view_.line_height, hscroll_max(view_)));
    if (!guard.is_gone())
        select_to({std::clamp(at.x, 0, std::max(0, view_.width - 1)),
                   std::clamp(at.y, 0, std::max(0, full_rows(view_) * view_.line_height - 1))});
}

bool ViewPointer::on_timer(TimerId timer) {
    if (timer != timer_ || unit_ == Unit::none)
        return false;
    scroll_towards(at_);
    return true;
}

bool ViewPointer::on_wheel(const WheelEvent& wheel) {
    if (wheel.with.control)
        return false;
    const bool is_sideways = wheel.with.shift && wheel.right == 0;
    // A column is scrolled over as a line is.
    const int unit = wheel.is_by_pixels ? 1 : wheel.lines;
    wheel_down_ += (is_sideways ? 0 : wheel.down) * unit;
    wheel_right_ += (is_sideways ? wheel.down : wheel.right) * unit;
    const int of_line = wheel.is_by_pixels ? view_.line_height : k_notch;
    const int lines = wheel_down_ / of_line;
    const int right =
        wheel.is_by_pixels ? wheel_right_ : wheel_right_ * view_.line_height / k_notch;
    wheel_down_ %= of_line;
    wheel_right_ = 0;
    const DrawGuard guard(view_);
    if (lines != 0)
        set_top_line(view_, top_line(view_) + lines);
    if (right != 0 && !guard.is_gone())
        set_hscroll(view_, std::min(view_.hscroll + right, hscroll_max(view_)));
    return true;
}

} // namespace pellux
