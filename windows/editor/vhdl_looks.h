#pragma once

#include "core/common/containers.h"
#include "core/text/text_block.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace pellux {

// How a VHDL text looks: its reserved words and its comments. Strings, character literals and
// extended identifiers hold neither, and like a comment from "--" on they end with their line; one
// from "/*" to "*/" goes on over lines.

enum class VhdlLook : std::uint8_t { plain, keyword, comment };

/// What goes on at a place of a text.
struct LookState {
    enum class Within : std::uint8_t {
        nothing,
        long_word, ///< too long for a keyword
        string,
        extended_identifier,
        line_comment,
        block_comment,
    };
    Within within = Within::nothing;
    bool is_after_name = false; ///< where an apostrophe is an attribute's

    bool operator==(const LookState&) const = default;
};

/// As a line begins, inside a comment from a line above it or not.
[[nodiscard]] inline LookState line_start_state(bool is_in_comment) {
    return {is_in_comment ? LookState::Within::block_comment : LookState::Within::nothing, false};
}

/// A stretch of a text with a look of its own.
struct LookStretch {
    ByteOffset start = 0;
    ByteOffset end = 0;
    VhdlLook look = VhdlLook::plain;
};

/// Bytes behind a place that may decide what begins there.
inline constexpr std::size_t k_look_ahead = 128;

/// Goes over a part of a line: from a place in state `state`, which lies at `offset` in the text,
/// as far as tokens begin in the first `size` bytes. Behind these `text` must go on by another
/// `k_look_ahead`, unless the line ends with it. Adds keywords and comments to `stretches` unless
/// that is null. Answers how many bytes it has gone over, and the state there in `state`.
[[nodiscard]] std::size_t scan_looks(std::string_view text, std::size_t size, ByteOffset offset,
                                     LookState& state, Vector<LookStretch>* stretches);

} // namespace pellux
