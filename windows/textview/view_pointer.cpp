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

/// Is that a place in selected text which may be moved?
bool can_be_dragged(TextView& view, Point at) {
    const TextRange range = selection(view.editing);
    if (view.editing.is_read_only || range.start == range.end)
        return false;
    const ByteOffset offset = offset_at_point(view, at);
    const Rect place = place_of(view, offset);
    return at.y < place.bottom && (offset > range.start || at.x >= place.left) &&
           (offset < range.end || at.x < place.left) && offset >= range.start &&
           offset <= range.end;
}

/// Moves what is selected to another place, or copies it there, and selects it.
void put_selection(TextEditing& editing, ByteOffset at, bool copies) {
    const TextRange range = selection(editing);
    const bool is_inside =
        copies ? at > range.start && at < range.end : at >= range.start && at <= range.end;
    if (range.start == range.end || is_inside)
        return;
    const UndoGroup group(editing);
    String text = selected_text(editing);
    if (!copies && !cut_selection(editing, text))
        return;
    if (!copies && at > range.end)
        at -= range.end - range.start;
    select_range(editing, at, at);
    if (insert_text(editing, pellux::view(text)))
        select_mode(editing, SelectMode::inserted);
}

} // namespace

TextRange ViewPointer::unit_at(ByteOffset offset) const {
    const TextDocument& document = view_.editing.document;
    if (held_ == Held::words)
        return word_at(document, offset);
    if (held_ == Held::lines) {
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

void ViewPointer::begin_selection(const PointerDownEvent& down) {
    const bool goes_on = down.with.shift && down.clicks == 1;
    held_ = down.clicks == 2 ? Held::words : down.clicks >= 3 ? Held::lines : Held::characters;
    TextRange begun = unit_at(offset_at_point(view_, down.at));
    if (goes_on) {
        const TextEditing& editing = view_.editing;
        const ByteOffset anchor =
            editing.anchor == nullptr ? caret_offset(editing) : offset_of(editing.anchor->point);
        begun = {anchor, anchor};
    }
    const TextDocument& document = view_.editing.document;
    first_ = make_owned<TextMark>(point_at(document, begun.start), false);
    last_ = make_owned<TextMark>(point_at(document, begun.end), false);
    select_to(down.at);
}

void ViewPointer::on_down(const PointerDownEvent& down) {
    const DrawGuard guard(view_);
    end_drag();
    if (guard.is_gone())
        return;
    if (down.button == PointerButton::right) {
        // The menu that follows is about the selection, or what is there.
        const ByteOffset offset = offset_at_point(view_, down.at);
        const TextRange range = selection(view_.editing);
        if (offset < range.start || offset >= range.end)
            select_range(view_.editing, offset, offset);
    }
    if (down.button != PointerButton::left)
        return;
    at_ = pressed_at_ = down.at;
    xvt_win_trap_pointer(view_.target);
    if (down.clicks == 1 && down.with == Modifiers{.control = down.with.control} &&
        can_be_dragged(view_, down.at)) {
        held_ = Held::selection;
        return;
    }
    begin_selection(down);
    if (!guard.is_gone() && down.clicks < 3)
        show_caret(view_);
}

void ViewPointer::on_move(const PointerMoveEvent& move) {
    at_ = move.at;
    show_cursor(at_);
    if (held_ == Held::none || !xvt_win_has_pointer(view_.target))
        return;
    const int distance = std::abs(at_.x - pressed_at_.x) + std::abs(at_.y - pressed_at_.y);
    if (held_ == Held::selection && distance > view_.line_height / 2)
        held_ = Held::text;
    const bool is_outside =
        outside(at_.y, view_.height) != 0 || (!is_of_lines() && outside(at_.x, view_.width) != 0);
    if (is_outside && timer_ == TimerId::none) {
        timer_ = xvt_timer_create(view_.target, k_scroll_ms);
    } else if (!is_outside && timer_ != TimerId::none) {
        xvt_timer_destroy(timer_);
        timer_ = TimerId::none;
    }
    if (!is_outside)
        drag_to(at_);
}

void ViewPointer::on_up(const PointerUpEvent& up) {
    if (up.button == PointerButton::none)
        end_drag();
    if (up.button != PointerButton::left)
        return;
    const bool was_pressed = held_ == Held::selection;
    const std::optional<ByteOffset> place = view_.drop_place;
    const DrawGuard guard(view_);
    end_drag();
    if (guard.is_gone())
        return;
    if (place)
        put_selection(view_.editing, *place, up.with.control);
    else if (was_pressed)
        select_range(view_.editing, offset_at_point(view_, up.at), offset_at_point(view_, up.at));
    if (!guard.is_gone() && (place || was_pressed))
        show_caret(view_);
}

void ViewPointer::drag_to(Point at) {
    if (held_ == Held::text)
        show_drop_place(view_, offset_at_point(view_, at));
    else if (held_ != Held::selection)
        select_to(at);
}

void ViewPointer::show_cursor(Point at) {
    const bool is_arrow =
        held_ >= Held::selection || (held_ == Held::none && can_be_dragged(view_, at));
    if (is_arrow != is_arrow_)
        xvt_win_set_cursor(view_.target, is_arrow ? CursorShape::arrow : CursorShape::text);
    is_arrow_ = is_arrow;
}

bool ViewPointer::cancel_drop() {
    if (held_ != Held::text)
        return false;
    end_drag();
    return true;
}

void ViewPointer::end_drag() {
    if (held_ == Held::none)
        return;
    held_ = Held::none;
    first_.reset();
    last_.reset();
    if (timer_ != TimerId::none)
        xvt_timer_destroy(timer_);
    timer_ = TimerId::none;
    xvt_win_release_pointer(view_.target);
    show_cursor(at_);
    if (view_.drop_place)
        show_drop_place(view_, std::nullopt);
}

void ViewPointer::scroll_towards(Point at) {
    const int down = steps(outside(at.y, view_.height), view_.line_height);
    const int right = is_of_lines() ? 0 : steps(outside(at.x, view_.width), view_.line_height);
    const DrawGuard guard(view_);
    if (down != 0)
        set_top_line(view_, top_line(view_) + down);
    if (right != 0 && !guard.is_gone())
        set_hscroll(view_, std::min(view_.hscroll + right * view_.line_height, hscroll_max(view_)));
    if (!guard.is_gone())
        drag_to({std::clamp(at.x, 0, std::max(0, view_.width - 1)),
                 std::clamp(at.y, 0, std::max(0, full_rows(view_) * view_.line_height - 1))});
}

bool ViewPointer::on_timer(TimerId timer) {
    if (timer != timer_ || held_ == Held::none)
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
