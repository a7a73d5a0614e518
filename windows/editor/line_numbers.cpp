#include "windows/editor/line_numbers.h"

#include "core/common/callback.h"
#include "windows/controls/control_looks.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <limits>

namespace pellux {
namespace {

constexpr int k_digits_min = 5;

Color ground() {
    constexpr int k_percent = 4;
    return mix_colors(xvt_scr_get_color(ThemeColor::base), xvt_scr_get_color(ThemeColor::text),
                      k_percent);
}

/// The decimal digits of a number.
class Digits {
public:
    explicit Digits(std::int64_t number)
        : end_(std::to_chars(buffer_, std::end(buffer_), number).ptr) {}
    [[nodiscard]] std::string_view text() const { return {buffer_, end_}; }

private:
    char buffer_[std::numeric_limits<std::int64_t>::digits10 + 2];
    const char* end_;
};

int width_of(const TextView& view, std::string_view digits) {
    int width = 0;
    for (const char digit : digits)
        width += view.layout.advances[static_cast<unsigned char>(digit)];
    return width;
}

} // namespace

LineNumbers::LineNumbers(Window parent, int id, TextView& view) : view_(view) {
    const auto handler = [](void* context, Window window, const Event& event) {
        auto& self = from_context<LineNumbers>(context);
        self.window_ = window;
        return self.on_event(event);
    };
    // Any size tells how many pixels of the device a logical one has.
    constexpr Rect k_first_place{0, 0, 100, 100};
    window_ = xvt_win_create_pane({.parent = parent,
                                   .id = id,
                                   .rect = k_first_place,
                                   .handler = {handler, this},
                                   .takes_focus = false});
}

LineNumbers::~LineNumbers() {
    xvt_vobj_destroy(window_);
}

int LineNumbers::width_for_numbers() const {
    const auto digits = std::max<std::size_t>(
        k_digits_min, Digits(line_count(view_.editing.document)).text().size());
    const auto& advances = view_.layout.advances;
    const int digit = *std::max_element(advances.begin() + '0', advances.begin() + '9' + 1);
    return static_cast<int>(digits) * digit + advances[' '];
}

int LineNumbers::wanted_width() const {
    const Rect inside = xvt_vobj_get_client_rect(window_);
    const Rect outside = xvt_vobj_get_outer_rect(window_);
    const int device = std::max(1, std::max(width(inside), height(inside)));
    const int logical = std::max(1, std::max(width(outside), height(outside)));
    return (width_for_numbers() * logical + device - 1) / device;
}

LineNumbers::Seen LineNumbers::look() const {
    return {.top = top_line(view_),
            .lines = line_count(view_.editing.document),
            .caret_line = caret_line(view_.editing),
            .height = std::min(view_.height, height_),
            .font = xvt_dwin_get_font(view_.target)};
}

LineNumbers::Row LineNumbers::wanted_row(std::size_t row) const {
    const std::int64_t line = seen_.top + static_cast<std::int64_t>(row);
    if (line >= seen_.lines)
        return {.number = 0};
    return {.number = line + 1, .has_caret = line == seen_.caret_line};
}

bool LineNumbers::follow() {
    if (const Seen now = look(); now != seen_) {
        const std::int64_t down = seen_.top - now.top;
        if (now.font != seen_.font || now.height != seen_.height)
            forget_rows();
        else if (down != 0 && !rows_.empty())
            scroll(down);
        seen_ = now;
        for (std::size_t row = 0; row < rows_.size(); ++row)
            if (const Row wanted = wanted_row(row); rows_[row] != wanted)
                draw_row(row, wanted);
    }
    const int width = width_for_numbers();
    const bool is_other = width != told_width_;
    told_width_ = width;
    return is_other;
}

void LineNumbers::forget_rows() {
    rows_.clear();
    xvt_dwin_invalidate_rect(window_, {0, 0, height_, width_});
}

void LineNumbers::scroll(std::int64_t lines_down) {
    const auto rows = static_cast<std::int64_t>(rows_.size());
    if (std::abs(lines_down) >= rows) {
        std::ranges::fill(rows_, Row());
        return;
    }
    const int down = static_cast<int>(lines_down) * view_.line_height;
    xvt_dwin_set_clip(window_, std::nullopt);
    xvt_dwin_scroll_rect(window_, {0, 0, seen_.height, width_}, 0, down);
    if (down > 0) {
        std::fill(rows_.begin(), std::shift_right(rows_.begin(), rows_.end(), lines_down), Row());
        return;
    }
    // The last row may be seen in part.
    const auto whole = rows_.begin() + seen_.height / view_.line_height;
    std::fill(std::shift_left(rows_.begin(), whole, -lines_down), rows_.end(), Row());
}

void LineNumbers::draw_row(std::size_t row, const Row& content) {
    rows_[row] = content;
    const int top = static_cast<int>(row) * view_.line_height;
    const Rect area{top, 0, std::min(top + view_.line_height, seen_.height), width_};
    const Color paper = ground();
    xvt_dwin_set_clip(window_, area);
    xvt_dwin_set_pen(window_, {.style = PenStyle::none});
    xvt_dwin_set_brush(window_, {.color = paper});
    xvt_dwin_draw_rect(window_, area);
    if (content.number == 0)
        return;
    const Digits digits(content.number);
    const int right = width_ - view_.layout.advances[' '];
    xvt_dwin_set_font(window_, seen_.font);
    xvt_dwin_set_encoding(window_, TextEncoding::latin_1);
    xvt_dwin_set_back_color(window_, paper);
    xvt_dwin_set_fore_color(window_, content.has_caret ? Color::black : Color::gray);
    xvt_dwin_draw_text(window_, right - width_of(view_, digits.text()), top + view_.ascent,
                       digits.text());
}

void LineNumbers::draw_part(const Rect& part) {
    if (rows_.empty()) {
        seen_ = look();
        rows_.resize(
            static_cast<std::size_t>((seen_.height + view_.line_height - 1) / view_.line_height));
    }
    xvt_dwin_set_clip(window_, std::nullopt);
    xvt_dwin_set_pen(window_, {.style = PenStyle::none});
    xvt_dwin_set_brush(window_, {.color = ground()});
    xvt_dwin_draw_rect(window_, part);
    const auto end =
        std::min(rows_.size(), static_cast<std::size_t>((part.bottom - 1) / view_.line_height + 1));
    for (auto row = static_cast<std::size_t>(part.top / view_.line_height); row < end; ++row)
        draw_row(row, rows_[row].number == k_unknown ? wanted_row(row) : rows_[row]);
}

void LineNumbers::press(const PointerDownEvent& down) {
    if (down.button != PointerButton::left)
        return;
    constexpr int k_clicks_for_lines = 3;
    xvt_vobj_set_focus(view_.target);
    xvt_win_dispatch_event(
        view_.target,
        Event{PointerDownEvent{.at = {0, down.at.y}, .with = {}, .clicks = k_clicks_for_lines}});
}

long LineNumbers::on_event(const Event& event) {
    if (const auto* update = event.get<UpdateEvent>()) {
        draw_part(update->rect);
    } else if (const auto* size = event.get<SizeEvent>()) {
        width_ = size->width;
        height_ = size->height;
        forget_rows();
    } else if (event.get<ThemeEvent>() != nullptr) {
        forget_rows();
    } else if (const auto* down = event.get<PointerDownEvent>()) {
        press(*down);
    } else if (event.get<WheelEvent>() != nullptr) {
        return xvt_win_dispatch_event(view_.target, event);
    } else if (event.get<ContextMenuEvent>() != nullptr) {
        return 1;
    }
    return 0;
}

} // namespace pellux
