#include "windows/textview/view_drawing.h"
#include "windows/textview/view_redraw.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace pellux {
namespace {

std::int64_t top_line_max(const TextView& view) {
    return std::max<std::int64_t>(0, line_count(view.editing.document) - full_rows(view));
}

/// The line at the top from which on the caret is seen: as it is, or at an edge, or far from there
/// in the middle.
std::int64_t top_line_for(const TextView& view, std::int64_t line) {
    const std::int64_t top = top_line(view);
    const int rows = full_rows(view);
    if (line >= top && line < top + rows)
        return top;
    if (line >= top - rows && line < top + 2 * rows)
        return line < top ? line : line - rows + 1;
    return line - rows / 2;
}

/// The same to the side: far enough in that some of what lies there is seen.
int hscroll_for(const TextView& view, std::int64_t x) {
    const int caret = view.layout.advances[' '];
    const std::int64_t seen = view.width - view.margin - caret;
    if (x >= view.hscroll && x <= view.hscroll + seen)
        return view.hscroll;
    if (x <= seen * 3 / 4)
        return 0;
    const std::int64_t to = x < view.hscroll ? x - seen / 4 : x - seen * 3 / 4;
    return static_cast<int>(std::clamp<std::int64_t>(to, 0, std::numeric_limits<int>::max() / 4));
}

} // namespace

std::int64_t top_line(const TextView& view) {
    return line_of(view.first_line.point);
}

int full_rows(const TextView& view) {
    return std::max(1, view.height / view.line_height);
}

int hscroll_max(const TextView& view) {
    const int room = view.width - view.margin - view.layout.advances[' '];
    return std::max({0, view.widest - room, view.hscroll});
}

void set_view_size(TextView& view, int width, int height) {
    if (view.width == width && view.height == height)
        return;
    view.width = width;
    view.height = height;
    for (RowGround& ground : view.grounds)
        ground.bare_from = std::numeric_limits<int>::max();
    // What is new is asked for by the toolkit.
    if (top_line(view) > top_line_max(view))
        set_top_line(view, top_line_max(view));
    tell_scrolled(view, true);
}

void set_top_line(TextView& view, std::int64_t line) {
    const DrawGuard guard(view);
    refresh(view);
    if (guard.is_gone())
        return;
    line = std::clamp<std::int64_t>(line, 0, top_line_max(view));
    const std::int64_t down = top_line(view) - line;
    if (down == 0)
        return;
    const bool is_drawn = !is_undrawn(view);
    if (is_drawn)
        erase_caret(view);
    move_mark(view.first_line, find_line(view.editing.document, line).point);
    view.drawn_top = line;
    const std::int64_t rows = row_count(view);
    if (is_drawn) {
        RowPart part{0, rows, 0, view.width};
        if (std::abs(down) < rows) {
            const int down_px = static_cast<int>(down) * view.line_height;
            scroll_down(view, 0, down_px);
            if (down > 0)
                part.last = down - 1;
            else
                part.first = (view.height + down_px) / view.line_height;
        }
        if (!draw_rows(view, part))
            return;
        draw_caret(view);
    }
    tell_scrolled(view, true);
}

void set_hscroll(TextView& view, int x) {
    const DrawGuard guard(view);
    refresh(view);
    if (guard.is_gone())
        return;
    x = std::max(x, 0);
    const int right = view.hscroll - x;
    if (right == 0)
        return;
    const bool is_drawn = !is_undrawn(view);
    if (is_drawn)
        erase_caret(view);
    view.hscroll = x;
    if (is_drawn) {
        RowPart part{0, row_count(view), 0, view.width};
        if (std::abs(right) < view.width) {
            xvt_dwin_scroll_rect(view.target, {0, 0, view.height, view.width}, right, 0);
            // With what of a character may reach over its edge.
            if (right > 0) {
                part.right = right + view.line_height;
                for (RowGround& ground : view.grounds)
                    ground.bare_from = std::min(ground.bare_from, view.width) + right;
            } else {
                part.left = view.width + right - view.line_height;
            }
        }
        if (!draw_rows(view, part))
            return;
        draw_caret(view);
    }
    tell_scrolled(view, true);
}

void show_caret(TextView& view) {
    const DrawGuard guard(view);
    refresh(view);
    if (guard.is_gone())
        return;
    set_top_line(view, top_line_for(view, caret_line(view.editing)));
    if (guard.is_gone())
        return;
    const ByteOffset start = line_start(view.editing.document, caret_line(view.editing));
    const std::int64_t x = x_of(view.layout, start, caret_offset(view.editing));
    set_hscroll(view, hscroll_for(view, x));
}

ByteOffset offset_at_point(TextView& view, Point point) {
    const TextDocument& document = view.editing.document;
    // Rounded down also above the view.
    const int row = point.y >= 0 ? point.y / view.line_height
                                 : -((-point.y + view.line_height - 1) / view.line_height);
    const std::int64_t line =
        std::clamp<std::int64_t>(top_line(view) + row, 0, line_count(document) - 1);
    const std::int64_t x = std::int64_t{point.x} - view.margin + view.hscroll;
    return offset_near(view.layout, line_start(document, line), std::max<std::int64_t>(x, 0));
}

Rect place_of(TextView& view, ByteOffset offset) {
    constexpr std::int64_t k_far = std::numeric_limits<int>::max() / 4;
    const TextDocument& document = view.editing.document;
    const std::int64_t line = line_of(point_at(document, offset));
    const std::int64_t x = x_of(view.layout, line_start(document, line), offset);
    const std::int64_t y = (line - top_line(view)) * view.line_height;
    const int left = static_cast<int>(std::clamp(x + view.margin - view.hscroll, -k_far, k_far));
    const int top = static_cast<int>(std::clamp(y, -k_far, k_far));
    return {top, left, top + view.line_height, left + view.layout.advances[' ']};
}

} // namespace pellux
