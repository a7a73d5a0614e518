#include "windows/textview/text_output.h"

#include "core/text/text_storage.h"

#include <algorithm>

namespace pellux {

void show_start(TextView& view) {
    redraw_all(view);
    set_top_line(view, 0);
    set_hscroll(view, 0);
    select_range(view.editing, 0, 0);
}

void append_output(TextView& view, std::string_view bytes) {
    TextDocument& document = view.editing.document;
    const bool follows = top_line(view) + full_rows(view) >= line_count(document);
    insert_bytes(document, text_size(document), bytes);
    const ByteOffset excess = text_size(document) - 2 * k_output_bytes_kept;
    if (excess > 0) {
        const ByteOffset cut = text_size(document) - k_output_bytes_kept;
        erase_bytes(document, 0, line_end(document, line_of(point_at(document, cut))) + 1);
    }
    if (follows) {
        redraw_all(view);
        set_top_line(view, line_count(document));
    }
    tell_views(document);
}

void set_output(TextView& view, std::string_view bytes) {
    TextDocument& document = view.editing.document;
    erase_bytes(document, 0, text_size(document));
    document.encoding = TextEncoding::utf_8;
    insert_bytes(document, 0, bytes);
    show_start(view);
}

SystemError load_output(TextView& view, std::string_view path) {
    TextDocument& document = view.editing.document;
    erase_bytes(document, 0, text_size(document));
    const TextLoad load = load_text(document, path, user_encoding());
    show_start(view);
    return load.error;
}

} // namespace pellux
