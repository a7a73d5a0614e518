#include "windows/textview/line_layout.h"

#include "core/common/utf8.h"
#include "windows/toolkit/draw.h"

#include <algorithm>
#include <cstring>

namespace pellux {
namespace {

/// Between two stops of a line, and before the first one.
constexpr ByteOffset k_stop_bytes = 8192;

bool is_ascii(char c) {
    return static_cast<unsigned char>(c) < 128;
}

LongLine* find_long_line(LineLayout& layout, ByteOffset start) {
    const auto found = std::ranges::find(layout.long_lines, start, &LongLine::start);
    return found == layout.long_lines.end() ? nullptr : &*found;
}

/// The last one of a line's stops for which `is_before` holds.
template <typename IsBefore>
LineStop last_stop(const LineLayout& layout, ByteOffset line_start, IsBefore is_before) {
    const auto line = std::ranges::find(layout.long_lines, line_start, &LongLine::start);
    if (line == layout.long_lines.end())
        return {line_start, 0};
    const auto end = std::ranges::partition_point(line->stops, is_before);
    return end == line->stops.begin() ? LineStop{line_start, 0} : *(end - 1);
}

std::int64_t single_width(const LineLayout& layout, std::string_view text) {
    if (layout.common_advance != 0)
        return static_cast<std::int64_t>(text.size()) * layout.common_advance;
    std::int64_t width = 0;
    for (const char c : text)
        width += layout.advances[static_cast<unsigned char>(c)];
    return width;
}

} // namespace

void measure_font(LineLayout& layout, int tab_width) {
    xvt_dwin_set_encoding(layout.target, TextEncoding::latin_1);
    for (std::size_t i = 0; i < layout.advances.size(); ++i) {
        const char c = static_cast<char>(i);
        layout.advances[i] = xvt_dwin_get_text_width(layout.target, {&c, 1});
    }
    const bool is_common = std::ranges::all_of(
        layout.advances, [&](int advance) { return advance == layout.advances[' ']; });
    layout.common_advance = is_common ? layout.advances[' '] : 0;
    layout.tab_px = std::max(1, layout.advances[' '] * std::max(1, tab_width));
    for (LongLine& line : layout.long_lines)
        line.start = -1;
}

void forget_places(LineLayout& layout, ByteOffset at, ByteOffset removed, ByteOffset inserted) {
    for (LongLine& line : layout.long_lines) {
        if (line.start < 0)
            continue;
        if (at + removed < line.start) {
            line.start += inserted - removed;
            for (LineStop& stop : line.stops)
                stop.offset += inserted - removed;
        } else if (at <= line.start) {
            line.start = -1;
        } else {
            std::erase_if(line.stops, [at](const LineStop& stop) { return stop.offset > at; });
        }
    }
}

LineWalk::LineWalk(LineLayout& layout, ByteOffset line_start, LineStop from)
    : layout_(layout), line_start_(line_start), at_(from),
      point_(point_at(*layout.document, from.offset)) {}

/// Copies what comes next, up to the end of the line and between characters.
void LineWalk::fill() {
    used_ = 0;
    size_ = 0;
    while (size_ < sizeof(buffer_)) {
        const std::string_view piece = text_piece(point_).substr(0, sizeof(buffer_) - size_);
        const auto length = std::min(piece.find('\n'), piece.size());
        std::memcpy(buffer_ + size_, piece.data(), length);
        size_ += length;
        point_ = behind(point_, length);
        is_at_end_ = length < piece.size() || piece.empty();
        if (is_at_end_)
            return;
    }
    if (layout_.document->encoding != TextEncoding::utf_8 || is_ascii(buffer_[size_ - 1]))
        return;
    // A character that the buffer cuts comes whole with the next one.
    constexpr std::size_t k_longest = 4;
    std::size_t cut = size_ - 1;
    while (is_continuation(buffer_[cut]) && size_ - cut < k_longest)
        --cut;
    if (is_continuation(buffer_[cut]) || utf8_length({buffer_ + cut, size_ - cut}) != 0)
        return;
    point_ = point_at(*layout_.document, at_.offset + static_cast<ByteOffset>(cut));
    size_ = cut;
}

void LineWalk::keep_stop() {
    LongLine* line = find_long_line(layout_, line_start_);
    const ByteOffset last =
        line == nullptr || line->stops.empty() ? line_start_ : line->stops.back().offset;
    if (at_.offset - last < k_stop_bytes)
        return;
    if (line == nullptr) {
        line = &layout_.long_lines[layout_.oldest_line++ % layout_.long_lines.size()];
        line->start = line_start_;
        line->stops.clear();
    }
    line->stops.push_back(at_);
}

/// How many bytes of a text without tabs stand for themselves: the ASCII that no other character
/// follows, with which it might be drawn as one.
std::size_t LineWalk::single_length(std::string_view text) const {
    if (layout_.document->encoding == TextEncoding::latin_1)
        return text.size();
    const auto other = std::ranges::find_if_not(text, is_ascii);
    if (other == text.end())
        return text.size();
    const std::size_t length = static_cast<std::size_t>(other - text.begin());
    return length == 0 ? 0 : length - 1;
}

bool LineWalk::next(LineRun& run) {
    if (used_ == size_) {
        if (is_at_end_)
            return false;
        keep_stop();
        fill();
        if (size_ == 0)
            return false;
    }
    std::string_view text(buffer_ + used_, size_ - used_);
    run.is_tab = text[0] == '\t';
    run.is_single = true;
    if (run.is_tab) {
        text = text.substr(0, 1);
    } else {
        text = text.substr(0, text.find('\t'));
        if (const std::size_t single = single_length(text); single > 0) {
            text = text.substr(0, single);
        } else {
            // Up to where two ASCII characters stand side by side.
            run.is_single = false;
            std::size_t end = 1;
            while (end < text.size() && !(is_ascii(text[end]) && is_ascii(text[end - 1])))
                ++end;
            if (end < text.size())
                --end;
            text = text.substr(0, std::max<std::size_t>(end, 1));
        }
    }
    run.text = text;
    run.offset = at_.offset;
    run.left = at_.x;
    run.right = run.is_tab ? (run.left / layout_.tab_px + 1) * layout_.tab_px
                           : run.left + width_of(layout_, run, text.size());
    used_ += text.size();
    at_ = {run.offset + static_cast<ByteOffset>(text.size()), run.right};
    return true;
}

LineStop stop_before_x(const LineLayout& layout, ByteOffset line_start, std::int64_t x) {
    return last_stop(layout, line_start, [x](const LineStop& stop) { return stop.x <= x; });
}

LineStop stop_before(const LineLayout& layout, ByteOffset line_start, ByteOffset offset) {
    return last_stop(layout, line_start,
                     [offset](const LineStop& stop) { return stop.offset <= offset; });
}

std::int64_t x_of(LineLayout& layout, ByteOffset line_start, ByteOffset offset) {
    LineWalk walk(layout, line_start, stop_before(layout, line_start, offset));
    LineRun run;
    while (walk.place().offset < offset && walk.next(run)) {
        if (walk.place().offset > offset)
            return run.left + width_of(layout, run, static_cast<std::size_t>(offset - run.offset));
    }
    return walk.place().x;
}

ByteOffset offset_near(LineLayout& layout, ByteOffset line_start, std::int64_t x) {
    LineWalk walk(layout, line_start, stop_before_x(layout, line_start, x));
    LineRun run;
    while (walk.next(run)) {
        if (run.right <= x)
            continue;
        std::size_t from = 0;
        std::int64_t left = run.left;
        while (from < run.text.size()) {
            std::size_t to = from + 1;
            while (!run.is_single && to < run.text.size() && is_continuation(run.text[to]))
                ++to;
            const std::int64_t right =
                run.is_tab ? run.right : run.left + width_of(layout, run, to);
            if (x < right)
                return run.offset + static_cast<ByteOffset>(x - left < right - x ? from : to);
            from = to;
            left = right;
        }
    }
    return walk.place().offset;
}

std::int64_t width_of(const LineLayout& layout, const LineRun& run, std::size_t bytes) {
    const std::string_view text = run.text.substr(0, bytes);
    if (run.is_single)
        return single_width(layout, text);
    xvt_dwin_set_encoding(layout.target, TextEncoding::utf_8);
    return xvt_dwin_get_text_width(layout.target, text);
}

} // namespace pellux
