#include "windows/textview/view_drawing.h"

#include "core/text/text_search.h"
#include "windows/controls/control_looks.h"

#include <algorithm>
#include <limits>

namespace pellux {
namespace {

/// How far left of what is seen a line's runs are told.
constexpr ByteOffset k_told_bytes = 65536;

constexpr Pen k_no_pen{.style = PenStyle::none};

struct Row {
    std::int64_t line = 0;
    ByteOffset start = 0;
    ByteOffset end = 0; ///< where its line end stands
    int top = 0;
};

void fill(const TextView& view, const Rect& rect, Color color) {
    xvt_dwin_set_brush(view.target, {.color = color});
    xvt_dwin_draw_rect(view.target, rect);
}

/// So much of the highlight, with a trace of the ink, which a dark theme needs.
Color highlight_part(int percent) {
    constexpr int k_ink_percent = 4;
    const Color paper = mix_colors(xvt_scr_get_color(ThemeColor::base),
                                   xvt_scr_get_color(ThemeColor::highlight), percent);
    return mix_colors(paper, xvt_scr_get_color(ThemeColor::text), k_ink_percent);
}

Color marked_ground(MarkGround ground) {
    constexpr Color k_alarm = make_color(0xD6, 0x45, 0x45);
    constexpr int k_percent = 40;
    return ground == MarkGround::plain
               ? highlight_part(k_percent)
               : mix_colors(xvt_scr_get_color(ThemeColor::base), k_alarm, k_percent);
}

Color match_ground() {
    constexpr Color k_amber = make_color(0xFF, 0xB4, 0x00);
    constexpr int k_percent = 40;
    return mix_colors(xvt_scr_get_color(ThemeColor::base), k_amber, k_percent);
}

int to_pixel(std::int64_t x) {
    constexpr std::int64_t k_far = std::numeric_limits<int>::max() / 4;
    return static_cast<int>(std::clamp(x, -k_far, k_far));
}

/// A line's x in the window.
int shown_x(const TextView& view, std::int64_t x) {
    return to_pixel(x + view.margin - view.hscroll);
}

/// Where to begin to tell of a line's runs, of which those from `left` on are seen.
LineStop first_stop(const TextView& view, const Row& row, std::int64_t left) {
    const LineStop seen = stop_before_x(view.layout, row.start, left);
    if (view.draw_callback == nullptr)
        return seen;
    return stop_before(view.layout, row.start, seen.offset - k_told_bytes);
}

/// Something was drawn in a row up to there, or a little over it.
void note_ink(TextView& view, int top, int right) {
    const auto row = static_cast<std::size_t>(top / view.line_height);
    if (top >= 0 && row < view.grounds.size())
        view.grounds[row].bare_from =
            std::max(view.grounds[row].bare_from, right + view.line_height);
}

void note_width(TextView& view, const LineWalk& walk, const Row& row) {
    const std::int64_t rest = row.end - walk.place().offset;
    std::int64_t width = walk.place().x;
    if (rest > k_told_bytes)
        width += rest * view.layout.advances[' '];
    else if (rest > 0)
        width = x_of(view.layout, row.start, row.end);
    view.widest = std::max(view.widest, to_pixel(width));
}

/// Draws the runs of a line between two places of the window.
bool draw_runs(TextView& view, const Row& row, int from, int to, bool is_selected) {
    const std::int64_t left = std::int64_t{from} - view.margin + view.hscroll;
    const std::int64_t right = left + (to - from);
    const DrawGuard guard(view);
    LineWalk walk(view.layout, row.start, first_stop(view, row, left));
    LineRun run;
    bool is_first = true;
    const Color ink = is_selected ? xvt_scr_get_color(ThemeColor::highlighted_text) : Color::black;
    xvt_dwin_set_fore_color(view.target, ink);
    while (walk.place().x < right && walk.next(run)) {
        const bool is_seen = run.right > left;
        if (run.is_tab || (!is_seen && view.draw_callback == nullptr))
            continue;
        xvt_dwin_set_encoding(view.target,
                              run.is_single ? TextEncoding::latin_1 : TextEncoding::utf_8);
        const int x = shown_x(view, run.left);
        const int baseline = row.top + view.ascent;
        if (view.draw_callback == nullptr) {
            xvt_dwin_draw_text(view.target, x, baseline, run.text);
            continue;
        }
        view.draw_callback(view.draw_context, view,
                           {.line = row.line,
                            .starts_line = is_first,
                            .offset = run.offset,
                            .text = run.text,
                            .is_seen = is_seen,
                            .is_selected = is_selected,
                            .x = x,
                            .baseline = baseline});
        if (guard.is_gone())
            return false;
        is_first = false;
    }
    note_ink(view, row.top, shown_x(view, walk.place().x));
    if (!is_selected)
        note_width(view, walk, row);
    return true;
}

/// Draws what of a line lies in a range over what it drew before, on a ground of its own. A line
/// end there shows as a blank.
bool draw_over(TextView& view, const Row& row, TextRange range, const RowPart& columns,
               Color ground, bool is_selected) {
    if (range.start >= range.end || range.end <= row.start || range.start > row.end)
        return true;
    const int from = shown_x(view, x_of(view.layout, row.start, std::max(range.start, row.start)));
    int to = shown_x(view, x_of(view.layout, row.start, std::min(range.end, row.end)));
    if (range.end > row.end)
        to += view.layout.advances[' '];
    const Rect part{row.top, std::max(from, columns.left), row.top + view.line_height,
                    std::min(to, columns.right)};
    if (is_empty(part))
        return true;
    xvt_dwin_set_clip(view.target, part);
    fill(view, part, ground);
    note_ink(view, part.top, part.right);
    xvt_dwin_set_back_color(view.target, ground);
    return draw_runs(view, row, part.left, part.right, is_selected);
}

bool draw_marked(TextView& view, const Row& row, const RowPart& columns) {
    for (const MarkGround ground : {MarkGround::plain, MarkGround::alarm})
        for (const TextRange range :
             ranges_in(view.marked[static_cast<std::size_t>(ground)], {row.start, row.end}))
            if (!draw_over(view, row, range, columns, marked_ground(ground), false))
                return false;
    return true;
}

/// Where in a line matches may begin that are seen.
TextRange places_seen(TextView& view, const Row& row, const RowPart& columns) {
    constexpr ByteOffset k_long = 4096;
    if (row.end - row.start <= k_long)
        return {row.start, row.end};
    const auto offset_at = [&](int x) {
        const std::int64_t in_line = std::int64_t{x} - view.margin + view.hscroll;
        return offset_near(view.layout, row.start, std::max<std::int64_t>(in_line, 0));
    };
    constexpr auto k_character = static_cast<ByteOffset>(k_character_bytes);
    const auto length = static_cast<ByteOffset>(view.sought->bytes.size());
    return {std::max(offset_at(columns.left) - length - k_character, row.start),
            std::min(offset_at(columns.right) + k_character, row.end)};
}

bool draw_matches(TextView& view, const Row& row, const RowPart& columns) {
    if (!view.sought)
        return true;
    const auto length = static_cast<ByteOffset>(view.sought->bytes.size());
    const Vector<ByteOffset> found =
        find_all(view.editing.document, *view.sought, places_seen(view, row, columns));
    for (std::size_t i = 0; i < found.size();) {
        TextRange range{found[i], found[i] + length};
        // Those that touch are one stretch.
        while (++i < found.size() && found[i] <= range.end)
            range.end = found[i] + length;
        if (!draw_over(view, row, range, columns, match_ground(), false))
            return false;
    }
    return true;
}

/// What an input method composes stands over the text behind the caret.
void draw_composition(TextView& view, const Rect& at, Color ground) {
    xvt_dwin_set_encoding(view.target, TextEncoding::utf_8);
    const int width = xvt_dwin_get_text_width(view.target, pellux::view(view.composition));
    fill(view, {at.top, at.left, at.bottom, at.left + width}, ground);
    note_ink(view, at.top, at.left + width);
    xvt_dwin_set_back_color(view.target, ground);
    xvt_dwin_set_fore_color(view.target, Color::black);
    xvt_dwin_draw_text(view.target, at.left, at.top + view.ascent, pellux::view(view.composition));
    const int line = at.top + view.ascent + 1;
    xvt_dwin_set_pen(view.target, {});
    xvt_dwin_draw_line(view.target, {at.left, line}, {at.left + width - 1, line});
    xvt_dwin_set_pen(view.target, k_no_pen);
}

void fit_grounds(TextView& view) {
    const auto rows = static_cast<std::size_t>(row_count(view));
    if (view.grounds.size() < rows)
        view.grounds.resize(rows);
}

void flip(const TextView& view, const Rect& rect) {
    xvt_dwin_set_draw_mode(view.target, DrawMode::exclusive_or);
    xvt_dwin_set_pen(view.target, k_no_pen);
    xvt_dwin_set_back_color(view.target, view.caret_ground);
    fill(view, rect, Color::black);
    xvt_dwin_set_draw_mode(view.target, DrawMode::copy);
}

} // namespace

std::span<const TextRange> ranges_in(std::span<const TextRange> ranges, TextRange line) {
    const auto first =
        std::ranges::lower_bound(ranges, line.start, {}, [](TextRange each) { return each.end; });
    const auto last =
        std::upper_bound(first, ranges.end(), line.end,
                         [](ByteOffset at, TextRange each) { return at < each.start; });
    return {first, last};
}

Color caret_line_tint() {
    constexpr int k_percent = 7;
    return highlight_part(k_percent);
}

std::int64_t tinted_line(const TextView& view) {
    return view.tints_caret_line ? caret_line(view.editing) : -1;
}

bool draw_rows(TextView& view, RowPart part) {
    part.first = std::max<std::int64_t>(part.first, 0);
    part.last = std::min<std::int64_t>(part.last, row_count(view) - 1);
    part.left = std::max(part.left, 0);
    part.right = std::min(part.right, view.width);
    if (part.first > part.last || part.left >= part.right)
        return true;
    const TextDocument& document = view.editing.document;
    const bool is_whole = part.left == 0 && part.right == view.width;
    const std::int64_t caret = view.composition.empty() ? -1 : caret_line(view.editing);
    const TextRange selected = selection(view.editing);
    const Color highlight =
        selected.start == selected.end ? Color::white : xvt_scr_get_color(ThemeColor::highlight);
    const std::int64_t tinted = tinted_line(view);
    xvt_dwin_set_pen(view.target, k_no_pen);
    Row row{.line = top_line(view) + part.first};
    row.start = line_start(document, row.line);
    // Row by row, as a cache holds one but not all of them.
    for (std::int64_t number = part.first; number <= part.last; ++number) {
        row.top = static_cast<int>(number) * view.line_height;
        const Rect area{row.top, part.left, row.top + view.line_height, part.right};
        xvt_dwin_set_clip(view.target, area);
        // Who draws may have asked for all of it anew.
        fit_grounds(view);
        RowGround& ground = view.grounds[static_cast<std::size_t>(number)];
        // A part of a row stays as the rest of it.
        if (is_whole && ground.is_tinted != (row.line == tinted))
            ground = {.is_tinted = row.line == tinted};
        const Color paper = ground.is_tinted ? view.tint : Color::white;
        fill(view, {area.top, area.left, area.bottom, std::min(area.right, ground.bare_from)},
             paper);
        if (is_whole)
            ground.bare_from = 0;
        if (row.line >= line_count(document))
            continue;
        row.end = line_end(document, row.line);
        xvt_dwin_set_back_color(view.target, paper);
        if (!draw_runs(view, row, part.left, part.right, false) || !draw_matches(view, row, part) ||
            !draw_marked(view, row, part) || !draw_over(view, row, selected, part, highlight, true))
            return false;
        if (row.line == caret) {
            xvt_dwin_set_clip(view.target, area);
            draw_composition(view, place_of(view, caret_offset(view.editing)), paper);
        }
        row.start = row.end + 1;
        ++row.line;
    }
    xvt_dwin_set_clip(view.target, std::nullopt);
    return true;
}

void scroll_down(TextView& view, int top, int down) {
    xvt_dwin_scroll_rect(view.target, {top, 0, view.height, view.width}, 0, down);
    fit_grounds(view);
    const auto first = view.grounds.begin() + top / view.line_height;
    const auto end = view.grounds.end();
    const int rows = down / view.line_height;
    // What is uncovered shows anything, and so does what comes from a row seen in part.
    if (rows > 0) {
        std::fill(first, std::shift_right(first, end, rows), RowGround());
    } else {
        const auto seen = view.grounds.begin() + view.height / view.line_height;
        std::fill(std::shift_left(first, std::max(first, seen), -rows), end, RowGround());
    }
}

void draw_caret(TextView& view) {
    constexpr int k_height_of_width = 10;
    if (!view.has_focus)
        return;
    Rect place = place_of(view, view.drop_place.value_or(caret_offset(view.editing)));
    xvt_win_set_text_caret(view.target, place);
    place.right = place.left + std::max(1, view.line_height / k_height_of_width);
    if (!meets(place, {0, 0, view.height, view.width}))
        return;
    view.caret = place;
    draw_caret_again(view);
}

void draw_caret_again(TextView& view) {
    if (!view.caret)
        return;
    const auto row = static_cast<std::size_t>(view.caret->top / view.line_height);
    const bool is_tinted = row < view.grounds.size() && view.grounds[row].is_tinted;
    view.caret_ground = is_tinted ? view.tint : Color::white;
    flip_caret(view);
}

void flip_caret(TextView& view) {
    if (!view.caret)
        return;
    flip(view, *view.caret);
    note_ink(view, view.caret->top, view.caret->right);
}

void erase_caret(TextView& view) {
    flip_caret(view);
    view.caret.reset();
}

} // namespace pellux
