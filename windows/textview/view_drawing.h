#pragma once

#include "windows/textview/text_view.h"

namespace pellux {

// The rows of a view, from 0 at the top; the last one may be seen in part.

[[nodiscard]] inline int row_count(const TextView& view) {
    return (view.height + view.line_height - 1) / view.line_height;
}

/// What of some rows is to be drawn: columns of pixels, `right` outside.
struct RowPart {
    std::int64_t first = 0;
    std::int64_t last = 0; ///< with it
    int left = 0;
    int right = 0;
};
/// Draws rows as far as they are seen, as if the caret were not there. False when the view did not
/// live through that.
bool draw_rows(TextView& view, RowPart part);

/// Notes that somebody destroys the view while it draws.
class DrawGuard {
public:
    explicit DrawGuard(TextView& view) : view_(view), outer_(view.is_gone) {
        view.is_gone = &is_gone_;
    }
    ~DrawGuard() {
        if (!is_gone_)
            view_.is_gone = outer_;
        else if (outer_ != nullptr)
            *outer_ = true;
    }
    DrawGuard(const DrawGuard&) = delete;
    DrawGuard& operator=(const DrawGuard&) = delete;

    [[nodiscard]] bool is_gone() const { return is_gone_; }

private:
    TextView& view_;
    bool* outer_;
    bool is_gone_ = false;
};

/// Those of ascending ranges that meet a line, its line end with it.
[[nodiscard]] std::span<const TextRange> ranges_in(std::span<const TextRange> ranges,
                                                   TextRange line);
/// The ground of a tinted line in the theme of now.
[[nodiscard]] Color caret_line_tint();
/// The line on a ground of its own, or -1.
[[nodiscard]] std::int64_t tinted_line(const TextView& view);

/// Moves the pixels of the rows from `top` on by whole rows; what is uncovered is to be drawn.
void scroll_down(TextView& view, int top, int down);

/// Draws the caret where it stands now, or not any more. Where it is drawn, doing so again shows
/// what was there before.
void draw_caret(TextView& view);
/// Where it was drawn, over rows that were drawn since.
void draw_caret_again(TextView& view);
void flip_caret(TextView& view);
void erase_caret(TextView& view);

} // namespace pellux
