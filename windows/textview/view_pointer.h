#pragma once

#include "windows/textview/text_view.h"

namespace pellux {

/// What the pointer does in a view: it sets the caret, and selects characters, words after a double
/// click or lines after a triple one, from where it was pressed to where it is dragged. What is
/// selected is dragged to another place in a text that may be changed, or copied there where
/// Control is held at the end. Held outside, it scrolls.
class ViewPointer {
public:
    explicit ViewPointer(TextView& view) : view_(view) {}

    void on_down(const PointerDownEvent& down);
    void on_move(const PointerMoveEvent& move);
    void on_up(const PointerUpEvent& up);
    /// False for a timer of somebody else.
    bool on_timer(TimerId timer);
    /// Text that is being dragged stays where it is; false when none is.
    bool cancel_drop();
    /// False when the view has no use for it.
    bool on_wheel(const WheelEvent& wheel);

private:
    enum class Held {
        none,
        characters,
        words,
        lines,
        selection, ///< pressed, and not moved far yet
        text,
    };

    /// Then it does not matter how far to the side the pointer is.
    [[nodiscard]] bool is_of_lines() const { return held_ == Held::lines; }
    [[nodiscard]] TextRange unit_at(ByteOffset offset) const;
    void select_to(Point at);
    void begin_selection(const PointerDownEvent& down);
    void drag_to(Point at);
    void show_cursor(Point at);
    void scroll_towards(Point at);
    void end_drag();

    TextView& view_;
    Held held_ = Held::none; ///< what is being selected or dragged
    bool is_arrow_ = false;
    Point pressed_at_;
    Owned<TextMark> first_; ///< of the stretch where it began
    Owned<TextMark> last_;
    Point at_;
    TimerId timer_ = TimerId::none; ///< while the pointer is held outside
    int wheel_down_ = 0;            ///< of a notch or a line, not used yet
    int wheel_right_ = 0;
};

} // namespace pellux
