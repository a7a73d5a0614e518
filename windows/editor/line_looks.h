#pragma once

#include "windows/editor/comment_lines.h"
#include "windows/editor/line_scan.h"

namespace pellux {

/// How a text looks, from any place on: a line is begun somewhere and then read to its end.
class LineLooks {
public:
    /// `comment_distance`: see `CommentLines`.
    explicit LineLooks(TextDocument& document, ByteOffset comment_distance = k_comment_distance);

    /// Begins at a place of the line that begins at `line_start`. True: that is inside a comment.
    bool begin(ByteOffset line_start, ByteOffset offset);
    /// The stretch of one look from `from` on, at most up to `to`; both lie in the line that was
    /// begun, and never before those of the last call.
    [[nodiscard]] LookStretch next(ByteOffset from, ByteOffset to);
    [[nodiscard]] bool starts_in_comment(ByteOffset line_start) {
        return comments_.starts_in_comment(line_start);
    }

private:
    static void on_many_changes(void* context);
    void take_changes();

    TextDocument& document_;
    CommentLines comments_;
    LongLineStates long_lines_;
    TextWatcher watcher_;
    LineScan scan_;
    Vector<LookStretch> stretches_; ///< that the scan found
    std::size_t used_ = 0;          ///< so many of them lie behind
};

} // namespace pellux
