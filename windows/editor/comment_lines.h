#pragma once

#include "core/text/text_document.h"

namespace pellux {

/// Bytes from one line whose state is kept to the next, about.
inline constexpr ByteOffset k_comment_distance = 16384;

/// Which lines of a VHDL text begin inside a comment from "/*" to "*/".
///
/// Read as far as it is asked for, and after a change only up to where all is as it was before. The
/// document is borrowed, and must not change while it is asked. GUI thread only.
class CommentLines {
public:
    /// Another distance is for tests.
    explicit CommentLines(TextDocument& document, ByteOffset distance = k_comment_distance);

    /// Asks for the line that begins at an offset.
    [[nodiscard]] bool starts_in_comment(ByteOffset line_start);

private:
    /// A line whose state is known.
    struct Stop {
        ByteOffset offset = 0;
        bool is_in_comment = false;
        bool is_certain = true; ///< if the one before is right, so is this one
    };

    static void on_many_changes(void* context);
    void take_changes();
    void take_change(const TextChange& change);
    void learn_up_to(ByteOffset line_start);
    [[nodiscard]] bool scan(const Stop& from, ByteOffset to) const;

    TextDocument& document_;
    ByteOffset distance_;
    TextWatcher watcher_;
    ByteOffset size_; ///< of the text that the stops are of
    Vector<Stop> stops_{Stop{}};
    std::size_t checked_ = 1; ///< so many of the first stops are right
    Stop last_;               ///< what was asked for last
};

} // namespace pellux
