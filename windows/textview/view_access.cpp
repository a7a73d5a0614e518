#include "windows/textview/view_access.h"

#include "core/common/callback.h"

#include <algorithm>
#include <utility>

namespace pellux {
namespace {

TextView& view_of(void* context) {
    return from_context<TextView>(context);
}

/// Characters before an offset.
std::int64_t number_of(const TextDocument& document, ByteOffset offset) {
    const TextCounts counts = counts_before(document, offset);
    return document.encoding == TextEncoding::utf_8 ? counts.bytes - counts.continuations
                                                    : counts.bytes;
}

ByteOffset offset_of_number(const TextDocument& document, std::int64_t number) {
    return move_by_characters(document, 0, std::max<std::int64_t>(number, 0));
}

std::int64_t size(void* context) {
    const TextDocument& document = view_of(context).editing.document;
    return number_of(document, text_size(document));
}

String copy(void* context, std::int64_t from, std::int64_t to) {
    const TextDocument& document = view_of(context).editing.document;
    const ByteOffset start = offset_of_number(document, from);
    const String text = copy_text(document, start, offset_of_number(document, to) - start);
    return document.encoding == TextEncoding::utf_8 ? text : latin_1_to_utf_8(view(text));
}

std::int64_t caret(void* context) {
    const TextEditing& editing = view_of(context).editing;
    return number_of(editing.document, caret_offset(editing));
}

void select(void* context, std::int64_t from, std::int64_t to) {
    TextView& view = view_of(context);
    const TextDocument& document = view.editing.document;
    select_range(view.editing, offset_of_number(document, from), offset_of_number(document, to));
    show_caret(view);
}

void set_caret(void* context, std::int64_t to) {
    select(context, to, to);
}

void selection(void* context, std::int64_t& from, std::int64_t& to) {
    const TextEditing& editing = view_of(context).editing;
    const TextRange range = pellux::selection(editing);
    from = number_of(editing.document, range.start);
    to = number_of(editing.document, range.end);
}

Rect place(void* context, std::int64_t at) {
    TextView& view = view_of(context);
    const Rect found = place_of(view, offset_of_number(view.editing.document, at));
    return meets(found, {0, 0, view.height, view.width}) ? found : Rect{};
}

std::int64_t at(void* context, Point point) {
    TextView& view = view_of(context);
    if (!contains({0, 0, view.height, view.width}, point))
        return -1;
    return number_of(view.editing.document, offset_at_point(view, point));
}

} // namespace

TextAccess access_to(TextView& view) {
    return {.size = size,
            .copy = copy,
            .caret = caret,
            .set_caret = set_caret,
            .selection = selection,
            .select = select,
            .place = place,
            .at = at,
            .is_read_only = view.editing.is_read_only,
            .context = &view};
}

} // namespace pellux
