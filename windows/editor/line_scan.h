#pragma once

#include "core/text/text_document.h"
#include "windows/editor/vhdl_looks.h"

namespace pellux {

/// A walk through a line of a text, piece by piece.
struct LineScan {
    ByteOffset at = 0; ///< where the next piece begins
    LookState state;   ///< there
    bool is_at_end = false;
};

/// Goes over the next piece and adds its stretches, see `scan_looks`; nothing at the line's end.
void scan_piece(const TextDocument& document, LineScan& scan, Vector<LookStretch>* stretches);

/// The states at some places of lines that are so long that a walk to what is seen of them takes
/// time.
class LongLineStates {
public:
    /// A walk through a line that begins at `line_start` in a state, to a place not far before
    /// `offset`.
    [[nodiscard]] LineScan scan_to(const TextDocument& document, ByteOffset line_start,
                                   LookState state, ByteOffset offset);
    void take_change(const TextChange& change);

private:
    struct Stop {
        ByteOffset line_start = 0;
        LookState line_state; ///< at its start
        ByteOffset offset = 0;
        LookState state;
    };
    Vector<Stop> stops_; ///< by offset
};

} // namespace pellux
