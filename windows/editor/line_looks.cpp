#include "windows/editor/line_looks.h"

#include "core/common/callback.h"

#include <algorithm>

namespace pellux {

LineLooks::LineLooks(TextDocument& document, ByteOffset comment_distance)
    : document_(document), comments_(document, comment_distance),
      watcher_(document.changes, on_many_changes, this) {}

void LineLooks::on_many_changes(void* context) {
    from_context<LineLooks>(context).take_changes();
}

void LineLooks::take_changes() {
    TextChanges& changes = document_.changes;
    if (watcher_.seen == changes.end())
        return;
    for (std::uint64_t number = watcher_.seen; number < changes.end(); ++number)
        long_lines_.take_change(changes.at(number));
    changes.mark_seen(watcher_, changes.end());
}

bool LineLooks::begin(ByteOffset line_start, ByteOffset offset) {
    take_changes();
    const bool is_in_comment = comments_.starts_in_comment(line_start);
    scan_ = long_lines_.scan_to(document_, line_start, line_start_state(is_in_comment), offset);
    stretches_.clear();
    used_ = 0;
    return is_in_comment;
}

LookStretch LineLooks::next(ByteOffset from, ByteOffset to) {
    for (;;) {
        while (used_ < stretches_.size() && stretches_[used_].end <= from)
            ++used_;
        if (used_ < stretches_.size() || scan_.at >= to || scan_.is_at_end)
            break;
        stretches_.clear();
        used_ = 0;
        scan_piece(document_, scan_, &stretches_);
    }
    if (used_ == stretches_.size())
        return {from, to, VhdlLook::plain};
    const LookStretch& found = stretches_[used_];
    if (found.start > from)
        return {from, std::min(found.start, to), VhdlLook::plain};
    return {from, std::min(found.end, to), found.look};
}

} // namespace pellux
