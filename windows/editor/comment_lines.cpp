#include "windows/editor/comment_lines.h"

#include "core/common/callback.h"
#include "windows/editor/line_scan.h"

#include <algorithm>
#include <cstring>

namespace pellux {
namespace {

/// Finds '/' with another sign: before it, or behind it.
struct PairSearch {
    const TextDocument& document;
    char other;
    bool is_before;

    /// Where the first pair begins that lies between two offsets as a whole; `to` without one.
    [[nodiscard]] ByteOffset find(ByteOffset from, ByteOffset to) const;
};

ByteOffset PairSearch::find(ByteOffset from, ByteOffset to) const {
    TextPoint point = point_at(document, from);
    char last = '\0'; ///< of the piece before
    ByteOffset start = from;
    while (start < to) {
        const std::string_view piece =
            text_piece(point).substr(0, static_cast<std::size_t>(to - start));
        if (!is_before && last == '/' && piece[0] == other)
            return start - 1;
        std::size_t at = 0;
        while (const void* const found = std::memchr(piece.data() + at, '/', piece.size() - at)) {
            at = static_cast<std::size_t>(static_cast<const char*>(found) - piece.data());
            if (is_before && (at == 0 ? last : piece[at - 1]) == other)
                return start + static_cast<ByteOffset>(at) - 1;
            ++at;
            if (!is_before && at < piece.size() && piece[at] == other)
                return start + static_cast<ByteOffset>(at) - 1;
        }
        last = piece.back();
        start += static_cast<ByteOffset>(piece.size());
        point = behind(point, piece.size());
    }
    return to;
}

/// Where the line of an offset begins; seldom asks the index, as most lines begin in the same
/// block.
ByteOffset start_of_line(const TextDocument& document, ByteOffset offset) {
    const TextPoint point = point_at(document, offset);
    int from = point.offset;
    while (from > 0 && byte_at(*point.block, from - 1) != '\n')
        --from;
    return from > 0 ? offset - (point.offset - from) : line_start(document, line_of(point));
}

} // namespace

CommentLines::CommentLines(TextDocument& document, ByteOffset distance)
    : document_(document), distance_(distance), watcher_(document.changes, on_many_changes, this),
      size_(text_size(document)) {}

void CommentLines::on_many_changes(void* context) {
    from_context<CommentLines>(context).take_changes();
}

void CommentLines::take_changes() {
    TextChanges& changes = document_.changes;
    for (std::uint64_t number = watcher_.seen; number < changes.end(); ++number)
        take_change(changes.at(number));
    if (watcher_.seen != changes.end())
        changes.mark_seen(watcher_, changes.end());
}

void CommentLines::take_change(const TextChange& change) {
    const ByteOffset grown = change.inserted - change.removed;
    size_ += grown;
    if (last_.offset > change.at)
        last_ = {};
    // What is known of a line rests on all that stands before it, but begins anew with the line.
    auto behind_change = std::ranges::upper_bound(stops_, change.at, {}, &Stop::offset);
    const auto kept =
        std::ranges::upper_bound(stops_, change.at + change.removed, {}, &Stop::offset);
    behind_change = stops_.erase(behind_change, kept);
    checked_ = std::min(checked_, static_cast<std::size_t>(behind_change - stops_.begin()));
    if (behind_change != stops_.end())
        behind_change->is_certain = false;
    for (; behind_change != stops_.end(); ++behind_change)
        behind_change->offset += grown;
}

/// The state at a line's start, from that of a line before it.
bool CommentLines::scan(const Stop& from, ByteOffset to) const {
    const PairSearch opening{document_, '*', false};
    const PairSearch closing{document_, '*', true};
    ByteOffset at = from.offset;
    bool is_in_comment = from.is_in_comment;
    while (at < to) {
        if (is_in_comment) {
            at = closing.find(at, to);
            if (at == to)
                return true;
            at += 2;
            is_in_comment = false;
            continue;
        }
        const ByteOffset found = opening.find(at, to);
        if (found == to)
            return false;
        // From the start of its line, or from where a comment in that line ended.
        const ByteOffset start = start_of_line(document_, found);
        LineScan line{.at = std::max(at, start), .state = {}};
        while (!line.is_at_end)
            scan_piece(document_, line, nullptr);
        is_in_comment = line.state.within == LookState::Within::block_comment;
        at = line.at + 1;
    }
    return is_in_comment;
}

void CommentLines::learn_up_to(ByteOffset line_start) {
    for (;;) {
        const Stop known = stops_[checked_ - 1];
        const bool has_next = checked_ < stops_.size();
        if (has_next && stops_[checked_].offset <= line_start && stops_[checked_].is_certain) {
            ++checked_;
            continue;
        }
        const bool reaches_next = has_next && stops_[checked_].offset <= line_start;
        if (!reaches_next && line_start < known.offset + distance_)
            return;
        // The first line that begins so far behind the known one.
        const TextPoint far = point_at(document_, known.offset + distance_ - 1);
        ByteOffset goal = line_end(document_, line_of(far)) + 1;
        const bool is_next = has_next && goal >= stops_[checked_].offset;
        if (is_next)
            goal = stops_[checked_].offset;
        if (goal > line_start)
            return;
        const bool is_in_comment = scan(known, goal);
        if (!is_next) {
            stops_.insert(stops_.begin() + static_cast<std::ptrdiff_t>(checked_),
                          {goal, is_in_comment});
        } else {
            Stop& next = stops_[checked_];
            if (next.is_in_comment != is_in_comment && checked_ + 1 < stops_.size())
                stops_[checked_ + 1].is_certain = false;
            next = {goal, is_in_comment};
        }
        ++checked_;
    }
}

bool CommentLines::starts_in_comment(ByteOffset line_start) {
    take_changes();
    // A text that is loaded tells nobody.
    if (size_ != text_size(document_)) {
        stops_.resize(1);
        checked_ = 1;
        last_ = {};
        size_ = text_size(document_);
    }
    learn_up_to(line_start);
    const Stop& stop = *(std::ranges::upper_bound(stops_, line_start, {}, &Stop::offset) - 1);
    const bool goes_on = last_.offset >= stop.offset && last_.offset <= line_start;
    last_ = {line_start, scan(goes_on ? last_ : stop, line_start)};
    return last_.is_in_comment;
}

} // namespace pellux
