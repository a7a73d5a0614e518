#include "windows/textview/shown_search.h"

#include "windows/textview/messages.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace pellux {
namespace {

/// A count as a format's %d takes it.
int to_int(std::int64_t number) {
    return static_cast<int>(std::min<std::int64_t>(number, INT32_MAX));
}

} // namespace

ShownSearch::ShownSearch(TextView& view, Callback told, void* context)
    : view_(view), told_(told), context_(context), count_(view.editing.document, told, context) {}

void ShownSearch::show(const SearchPattern& pattern) {
    if (pattern.bytes.empty()) {
        drop();
        return;
    }
    SearchPattern shown = pattern;
    shown.backwards = false;
    const bool is_new = view_.sought != shown;
    if (is_new || seen_edits_ != view_.editing.document.edits)
        count_.start(shown);
    seen_edits_ = view_.editing.document.edits;
    const Callback told = told_;
    void* const context = context_;
    if (is_new)
        set_sought_pattern(view_, std::move(shown));
    told(context);
}

void ShownSearch::keep_showing(const SearchPattern& pattern) {
    stays_ = true;
    show(pattern);
}

void ShownSearch::hide() {
    stays_ = false;
    drop();
}

void ShownSearch::drop() {
    if (!view_.sought)
        return;
    count_.stop();
    const Callback told = told_;
    void* const context = context_;
    set_sought_pattern(view_, std::nullopt);
    told(context);
}

void ShownSearch::on_escape() {
    if (!stays_)
        hide();
}

void ShownSearch::follow_changes() {
    if (!view_.sought || seen_edits_ == view_.editing.document.edits)
        return;
    seen_edits_ = view_.editing.document.edits;
    if (stays_)
        count_.start_again_soon();
    else
        hide();
}

String ShownSearch::words() const {
    if (!view_.sought || (!count_.is_complete() && count_.found() == 0))
        return {};
    const TextRange range = selection(view_.editing);
    const bool may_be_match =
        range.end - range.start == static_cast<ByteOffset>(view_.sought->bytes.size());
    const int number = may_be_match ? to_int(count_.number_of(range.start)) : 0;
    const int found = to_int(count_.found());
    if (number > 0)
        return count_.is_complete() ? format_message(msg_match_of, number, found)
                                    : format_message(msg_match_of_more, number, found);
    return count_.is_complete() ? format_message(msg_matches, found)
                                : format_message(msg_more_matches, found);
}

} // namespace pellux
