#include "windows/editor/highlighting.h"

#include "core/common/callback.h"
#include "core/os/ascii.h"

#include <algorithm>

namespace pellux {
namespace {

constexpr unsigned k_style_mask = 3;

std::uint16_t style_of(const Source_options& options, unsigned bit) {
    return static_cast<std::uint16_t>(static_cast<std::uint32_t>(options.flags) >> bit &
                                      k_style_mask);
}

Color color_of(std::int32_t stored) {
    return static_cast<Color>(static_cast<std::uint32_t>(stored));
}

/// The letters of ASCII and Latin-1; `before` is the byte before it in the text.
char upper_letter(char c, char before, TextEncoding encoding) {
    if (static_cast<unsigned char>(c) < 128)
        return ascii_upper(c);
    if (encoding == TextEncoding::latin_1)
        return latin_1_in_case(c, true);
    // In UTF-8 these letters are 0xC3 and a byte that is theirs of Latin-1 less 0x40.
    return before == '\xC3'
               ? static_cast<char>(latin_1_in_case(static_cast<char>(c | 0x40), true) & ~0x40)
               : c;
}

/// Draws parts of a segment one after the other.
class SegmentPainter {
public:
    SegmentPainter(TextView& view, const TextSegment& segment) : view_(view), segment_(segment) {
        run_.text = segment.text;
        // Runs of single bytes in UTF-8 are ASCII.
        run_.is_single = view.editing.document.encoding == TextEncoding::latin_1 ||
                         std::ranges::all_of(segment.text, [](char c) {
                             return static_cast<unsigned char>(c) < 128;
                         });
    }

    void paint(std::size_t from, std::size_t to, const WordLook& look) {
        const std::string_view part = segment_.text.substr(from, to - from);
        const int x =
            segment_.x + (from == 0 ? 0 : static_cast<int>(width_of(view_.layout, run_, from)));
        const Window target = view_.target;
        if (!segment_.is_selected)
            xvt_dwin_set_fore_color(target, look.color);
        const Font font = xvt_dwin_get_font(target);
        if (look.style != 0) {
            Font styled = font;
            xvt_font_set_style(styled, look.style);
            xvt_dwin_set_font(target, styled);
        }
        xvt_dwin_draw_text(target, x, segment_.baseline,
                           look.is_upper_case ? upper_case(part, from) : part);
        if (look.style != 0)
            xvt_dwin_set_font(target, font);
    }

private:
    std::string_view upper_case(std::string_view part, std::size_t from) {
        part = part.substr(0, upper_.size());
        char before = from == 0 ? '\0' : segment_.text[from - 1];
        for (std::size_t i = 0; i < part.size(); ++i) {
            upper_[i] = upper_letter(part[i], before, view_.editing.document.encoding);
            before = part[i];
        }
        return {upper_.data(), part.size()};
    }

    TextView& view_;
    const TextSegment& segment_;
    LineRun run_;
    std::array<char, 512> upper_; // NOLINT: bytes are written before they are read
};

} // namespace

HighlightLooks looks_of(const Source_options& options) {
    return {
        .is_on = options.has(OptionFlag::highlight_keywords),
        .plain = {.color = color_of(options.text_colour)},
        .keywords = {.color = color_of(options.keyword_colour),
                     .style = style_of(options, k_keyword_style_bit),
                     .is_upper_case = options.has(OptionFlag::upper_case_keywords)},
        .comments = {.color = color_of(options.comment_colour),
                     .style = style_of(options, k_comment_style_bit),
                     .is_upper_case = options.has(OptionFlag::upper_case_comments)},
    };
}

Highlighter::Highlighter(TextDocument& document)
    : document_(document), lines_(document), watcher_(document.changes, on_many_changes, this),
      followed_(document.edits) {}

void Highlighter::draw(void* context, TextView& view, const TextSegment& segment) {
    from_context<Highlighter>(context).draw_segment(view, segment);
}

void Highlighter::draw_segment(TextView& view, const TextSegment& segment) {
    if (segment.starts_line)
        has_begun_ = false;
    if (!segment.is_seen)
        return;
    SegmentPainter painter(view, segment);
    if (!looks.is_on) {
        painter.paint(0, segment.text.size(), looks.plain);
    } else {
        if (!has_begun_) {
            const ByteOffset start = line_start(document_, segment.line);
            note_drawn(view, {start, lines_.begin(start, segment.offset)});
            has_begun_ = true;
        }
        const ByteOffset end = segment.offset + static_cast<ByteOffset>(segment.text.size());
        for (ByteOffset at = segment.offset; at < end;) {
            const LookStretch stretch = lines_.next(at, end);
            const WordLook& look = stretch.look == VhdlLook::keyword   ? looks.keywords
                                   : stretch.look == VhdlLook::comment ? looks.comments
                                                                       : looks.plain;
            painter.paint(static_cast<std::size_t>(at - segment.offset),
                          static_cast<std::size_t>(stretch.end - segment.offset), look);
            at = stretch.end;
        }
    }
    if (!segment.is_selected)
        xvt_dwin_set_fore_color(view.target, Color::black);
}

void Highlighter::on_many_changes(void* context) {
    from_context<Highlighter>(context).take_changes();
}

void Highlighter::take_changes() {
    TextChanges& changes = document_.changes;
    if (watcher_.seen == changes.end())
        return;
    for (std::uint64_t number = watcher_.seen; number < changes.end(); ++number) {
        const TextChange& change = changes.at(number);
        const ByteOffset end = change.at + change.removed;
        std::erase_if(drawn_, [&](const DrawnLine& line) {
            return line.start > change.at && line.start <= end;
        });
        for (DrawnLine& line : drawn_)
            if (line.start > end)
                line.start += change.inserted - change.removed;
    }
    changes.mark_seen(watcher_, changes.end());
}

void Highlighter::note_drawn(const TextView& view, DrawnLine line) {
    take_changes();
    auto place = std::ranges::lower_bound(drawn_, line.start, {}, &DrawnLine::start);
    if (place != drawn_.end() && place->start == line.start) {
        *place = line;
        return;
    }
    drawn_.insert(place, line);
    const auto kept = static_cast<std::size_t>(full_rows(view)) + 2;
    if (drawn_.size() <= 2 * kept)
        return;
    const ByteOffset top = offset_of(view.first_line.point);
    const ByteOffset bottom =
        line_start(document_, top_line(view) + static_cast<std::int64_t>(kept));
    std::erase_if(drawn_, [=](const DrawnLine& each) {
        return each.start < top || (each.start > bottom && each.start != line.start);
    });
}

void Highlighter::follow_changes(TextView& view) {
    if (followed_ == document_.edits || !looks.is_on)
        return;
    followed_ = document_.edits;
    take_changes();
    const std::int64_t top = top_line(view);
    for (const DrawnLine& line : drawn_) {
        if (lines_.starts_in_comment(line.start) == line.is_in_comment)
            continue;
        const std::int64_t row = line_of(point_at(document_, line.start)) - top;
        if (row < 0 || row > full_rows(view))
            continue;
        const int y = static_cast<int>(row) * view.line_height;
        xvt_dwin_invalidate_rect(view.target, {y, 0, y + view.line_height, view.width});
    }
}

} // namespace pellux
