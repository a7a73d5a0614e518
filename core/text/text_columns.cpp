#include "core/text/text_columns.h"

#include "core/common/utf8.h"

#include <algorithm>

namespace pellux {
namespace {

struct Step {
    ByteOffset offset = 0;
    std::int64_t column = 0;
};

/// Goes on from the start of a line until `end` or the last character that does not pass `column`.
Step walk(const TextDocument& document, ByteOffset start, ByteOffset end, std::int64_t column,
          int tab_width) {
    const bool is_utf8 = document.encoding == TextEncoding::utf_8;
    Step at{start, 0};
    for (TextPoint point = point_at(document, start); at.offset < end;) {
        const std::string_view piece =
            text_piece(point).substr(0, static_cast<std::size_t>(end - at.offset));
        for (std::size_t i = 0; i < piece.size(); ++i) {
            const bool is_tab = piece[i] == '\t';
            const bool goes_on = is_utf8 && is_continuation(piece[i]) && at.offset > start;
            const std::int64_t next = is_tab    ? (at.column / tab_width + 1) * tab_width
                                      : goes_on ? at.column
                                                : at.column + 1;
            if (next > column && !goes_on)
                return at;
            at = {at.offset + 1, next};
        }
        point = behind(point, piece.size());
    }
    return at;
}

} // namespace

std::int64_t display_column(const TextDocument& document, ByteOffset offset, int tab_width) {
    const ByteOffset start = line_start(document, line_of(point_at(document, offset)));
    return walk(document, start, offset, INT64_MAX, std::max(tab_width, 1)).column;
}

ByteOffset offset_at_column(const TextDocument& document, std::int64_t line, std::int64_t column,
                            int tab_width) {
    return walk(document, line_start(document, line), line_end(document, line), column,
                std::max(tab_width, 1))
        .offset;
}

} // namespace pellux
