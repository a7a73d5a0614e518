#include "windows/textview/view_redraw.h"

#include "windows/textview/view_drawing.h"

#include <algorithm>
#include <utility>

namespace pellux {
namespace {

/// Where an offset is after a change, as a mark that stays in front of what is inserted there.
ByteOffset moved(ByteOffset at, const TextChange& change) {
    if (at <= change.at)
        return at;
    return std::max(at, change.at + change.removed) - change.removed + change.inserted;
}

TextRange moved(TextRange range, const TextChange& change) {
    return {moved(range.start, change), moved(range.end, change)};
}

void take_change(TextView& view, const TextChange& change) {
    RedrawRegion& region = view.redraw;
    const ByteOffset end = change.at + change.removed;
    if (region.first < 0)
        region = {change.at, end, 0};
    region.first = std::min(region.first, change.at);
    region.last = std::max(region.last, end) - change.removed + change.inserted;
    region.line_delta += change.lines_inserted - change.lines_removed;
    view.redraw_flags |=
        k_redraw_edited | (change.lines_inserted == change.lines_removed ? k_redraw_same_lines
                                                                         : k_redraw_moved_lines);
    view.drawn_selection = moved(view.drawn_selection, change);
    for (Vector<TextRange>& ranges : view.marked)
        for (TextRange& range : ranges)
            range = moved(range, change);
    forget_places(view.layout, change.at, change.removed, change.inserted);
}

RowPart whole_rows(const TextView& view, std::int64_t first, std::int64_t last) {
    return {first, last, 0, view.width};
}

bool draw_lines(TextView& view, std::int64_t first, std::int64_t last) {
    const std::int64_t top = top_line(view);
    return draw_rows(view, whole_rows(view, first - top, last - top));
}

bool draw_lines_between(TextView& view, ByteOffset a, ByteOffset b) {
    const TextDocument& document = view.editing.document;
    return a == b || draw_lines(view, line_of(point_at(document, std::min(a, b))),
                                line_of(point_at(document, std::max(a, b))));
}

/// Draws the lines in which the one range lies and the other does not.
bool draw_differing(TextView& view, TextRange before, TextRange now) {
    if (before == now)
        return true;
    if (before.start >= before.end || now.start >= now.end)
        return draw_lines_between(view, before.start, before.end) &&
               draw_lines_between(view, now.start, now.end);
    return draw_lines_between(view, before.start, now.start) &&
           draw_lines_between(view, before.end, now.end);
}

/// Draws the rows where other ranges are marked than before.
bool draw_marked(TextView& view, std::span<const TextRange> before,
                 std::span<const TextRange> now) {
    const TextDocument& document = view.editing.document;
    const std::int64_t top = top_line(view);
    const std::int64_t end = std::min(top + row_count(view), line_count(document));
    TextRange row{.start = line_start(document, top)};
    for (std::int64_t line = top; line < end; ++line, row.start = row.end + 1) {
        row.end = line_end(document, line);
        if (!std::ranges::equal(ranges_in(before, row), ranges_in(now, row)) &&
            !draw_lines(view, line, line))
            return false;
    }
    return true;
}

/// Draws the rows whose ground is another now.
bool draw_tint(TextView& view) {
    const std::int64_t tinted = tinted_line(view) - view.drawn_top;
    for (std::size_t row = 0; row < view.grounds.size(); ++row) {
        const auto number = static_cast<std::int64_t>(row);
        if (view.grounds[row].is_tinted != (number == tinted) &&
            !draw_rows(view, whole_rows(view, number, number)))
            return false;
    }
    return true;
}

/// Draws the lines that changed; what stands behind them moves as it is.
bool draw_changed(TextView& view) {
    const TextDocument& document = view.editing.document;
    const RedrawRegion region = view.redraw;
    const std::int64_t top = top_line(view);
    const std::int64_t rows = row_count(view);
    const std::int64_t first = line_of(point_at(document, region.first)) - top;
    const std::int64_t last = line_of(point_at(document, region.last)) - top;
    const std::int64_t delta = region.line_delta;
    const bool stays_above = view.drawn_top == top || first <= 0;
    const bool stays_behind = view.drawn_top + delta == top || last >= rows - 1;
    if (stays_above && stays_behind) {
        RowPart part = whole_rows(view, first, last);
        // What stands before a change in its line is drawn as it was, but for the character that
        // may end there.
        if (first == last && first >= 0 && first < rows && delta == 0 && view.drawn_top == top &&
            view.draw_callback == nullptr && !view.sought)
            part.left = place_of(view, std::max(previous_character(document, region.first),
                                                line_start(document, top + first)))
                            .left -
                        view.line_height;
        return draw_rows(view, part);
    }
    const std::int64_t moved_from = last + 1 - delta;
    if (view.drawn_top != top || moved_from < 0 || std::max(moved_from, last + 1) >= rows)
        return draw_rows(view, whole_rows(view, view.drawn_top == top ? first : 0, rows));
    const int down = static_cast<int>(delta) * view.line_height;
    const int from = static_cast<int>(std::min(moved_from, last + 1)) * view.line_height;
    scroll_down(view, from, down);
    return draw_rows(view, whole_rows(view, first, last)) &&
           (down > 0 ||
            draw_rows(view, whole_rows(view, (view.height + down) / view.line_height, rows)));
}

/// The first line's mark stands at the start of its line.
void settle_first_line(TextView& view) {
    move_mark(view.first_line, find_line(view.editing.document, top_line(view)).point);
}

} // namespace

void take_changes(TextView& view) {
    TextChanges& changes = view.editing.document.changes;
    if (view.watcher.seen == changes.end())
        return;
    const bool was_undrawn = is_undrawn(view);
    for (std::uint64_t number = view.watcher.seen; number < changes.end(); ++number)
        take_change(view, changes.at(number));
    changes.mark_seen(view.watcher, changes.end());
    if (was_undrawn)
        view.redraw = {};
}

bool is_undrawn(const TextView& view) {
    return (view.redraw_flags & k_redraw_moved_lines) != 0 && view.redraw.first < 0;
}

void tell_scrolled(TextView& view, bool always) {
    const std::int64_t lines = line_count(view.editing.document);
    if (!always && view.told_lines == lines && view.told_widest == view.widest)
        return;
    view.told_lines = lines;
    view.told_widest = view.widest;
    if (view.scroll_callback != nullptr)
        view.scroll_callback(view.scroll_context);
}

void redraw_all(TextView& view) {
    take_changes(view);
    view.redraw_flags = k_redraw_moved_lines;
    view.redraw = {};
    view.grounds.clear();
    if (view.tints_caret_line)
        view.tint = caret_line_tint();
    xvt_dwin_invalidate_rect(view.target, {0, 0, view.height, view.width});
}

void draw_part(TextView& view, const Rect& part) {
    take_changes(view);
    const bool was_undrawn = is_undrawn(view);
    if (!was_undrawn && view.redraw.first >= 0) {
        // Rows of before would stand beside rows of now.
        redraw_all(view);
        return;
    }
    if (was_undrawn) {
        settle_first_line(view);
        view.drawn_top = top_line(view);
        view.drawn_selection = selection(view.editing);
        view.caret.reset();
        if (contains(part, {0, 0, view.height, view.width}))
            view.redraw_flags = 0;
    }
    if (!draw_rows(view, {part.top / view.line_height, (part.bottom - 1) / view.line_height,
                          part.left, part.right}))
        return;
    // A pane that grew may show it for the first time.
    if (was_undrawn || !view.caret)
        draw_caret(view);
    else
        draw_caret_again(view);
    tell_scrolled(view, false);
}

void refresh(TextView& view) {
    take_changes(view);
    // It lies over the text wherever the caret is.
    if (!view.composition.empty())
        redraw_all(view);
    if (!is_undrawn(view)) {
        erase_caret(view);
        const bool has_changed = view.redraw.first >= 0;
        if (has_changed)
            settle_first_line(view);
        if (has_changed && !draw_changed(view))
            return;
        view.redraw = {};
        view.redraw_flags = 0;
        view.drawn_top = top_line(view);
        const TextRange now = selection(view.editing);
        if (!draw_differing(view, view.drawn_selection, now))
            return;
        view.drawn_selection = now;
        if (!draw_tint(view))
            return;
        draw_caret(view);
    }
    tell_scrolled(view, false);
}

void set_marked_ranges(TextView& view, std::span<const TextRange> ranges, MarkGround ground) {
    take_changes(view);
    Vector<TextRange>& marked = view.marked[static_cast<std::size_t>(ground)];
    if (std::ranges::equal(marked, ranges))
        return;
    const DrawGuard guard(view);
    refresh(view);
    if (guard.is_gone())
        return;
    const Vector<TextRange> before = std::exchange(marked, {ranges.begin(), ranges.end()});
    if (is_undrawn(view))
        return;
    erase_caret(view);
    if (draw_marked(view, before, marked))
        draw_caret(view);
}

void set_sought_pattern(TextView& view, std::optional<SearchPattern> pattern) {
    const DrawGuard guard(view);
    refresh(view);
    if (guard.is_gone())
        return;
    view.sought = std::move(pattern);
    if (is_undrawn(view))
        return;
    erase_caret(view);
    if (draw_rows(view, whole_rows(view, 0, row_count(view))))
        draw_caret(view);
}

void show_composition(TextView& view, std::string_view text) {
    if (pellux::view(view.composition) == text)
        return;
    view.composition = text;
    redraw_all(view);
}

} // namespace pellux
