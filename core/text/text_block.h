#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace pellux {

struct IndexLeaf;
struct TextDocument;

/// Bytes from the start of a text.
using ByteOffset = std::int64_t;

/// What is counted of a text or a part of it.
struct TextCounts {
    std::int64_t bytes = 0;
    std::int64_t line_ends = 0;
    std::int64_t continuations = 0; ///< bytes 0x80 to 0xBF, which go on a character of UTF-8

    TextCounts& operator+=(const TextCounts& other) {
        bytes += other.bytes;
        line_ends += other.line_ends;
        continuations += other.continuations;
        return *this;
    }
    TextCounts& operator-=(const TextCounts& other) {
        bytes -= other.bytes;
        line_ends -= other.line_ends;
        continuations -= other.continuations;
        return *this;
    }
    bool operator==(const TextCounts&) const = default;
};

[[nodiscard]] inline TextCounts operator-(TextCounts left, const TextCounts& right) {
    return left -= right;
}

[[nodiscard]] TextCounts count_text(std::string_view text);
/// Bytes up to and with the line end of number `count`, from 1, or all of them when there are
/// fewer. `count` then says how many are still to come.
[[nodiscard]] std::size_t skip_line_ends(std::string_view text, std::int64_t& count);
/// The same from the end of the text: where its line end of number `count` from behind, from 1,
/// ends.
[[nodiscard]] std::size_t skip_line_ends_back(std::string_view text, std::int64_t& count);

/// Where a `TextMark` is chained in: the marks of a block are a circle with the block's own link.
struct MarkLink {
    MarkLink* previous = this;
    MarkLink* next = this;

    MarkLink() = default;
    MarkLink(const MarkLink&) = delete;
    MarkLink& operator=(const MarkLink&) = delete;
};

inline constexpr int k_block_bytes = 1024;

/// A part of a text, with a gap where it was changed last: what stands before the gap begins with
/// `data`, what stands behind it ends where the area ends. Offsets in a block count the bytes of
/// its text, the gap left out.
struct TextBlock {
    TextBlock* next = nullptr;
    TextBlock* previous = nullptr;
    TextDocument* document = nullptr;
    IndexLeaf* leaf = nullptr; ///< of the document's index
    mutable int slot = 0;      ///< where it was found last in its leaf
    char* gap_start = nullptr;
    char* gap_end = nullptr;
    char* area_end = nullptr;
    MarkLink marks;
    char data[k_block_bytes]; // NOLINT: bytes are written before they are read
};

[[nodiscard]] inline int block_length(const TextBlock& block) {
    return static_cast<int>((block.gap_start - block.data) + (block.area_end - block.gap_end));
}

[[nodiscard]] inline int free_bytes(const TextBlock& block) {
    return static_cast<int>(block.gap_end - block.gap_start);
}

/// The text before the gap.
[[nodiscard]] inline std::string_view text_before_gap(const TextBlock& block) {
    return {block.data, static_cast<std::size_t>(block.gap_start - block.data)};
}

[[nodiscard]] inline std::string_view text_behind_gap(const TextBlock& block) {
    return {block.gap_end, static_cast<std::size_t>(block.area_end - block.gap_end)};
}

[[nodiscard]] inline char byte_at(const TextBlock& block, int offset) {
    const char* at = block.data + offset;
    return at < block.gap_start ? *at : at[block.gap_end - block.gap_start];
}

inline void move_gap(TextBlock& block, int offset) {
    char* const to = block.data + offset;
    if (to < block.gap_start) {
        const std::ptrdiff_t size = block.gap_start - to;
        block.gap_end -= size;
        std::memmove(block.gap_end, to, static_cast<std::size_t>(size));
        block.gap_start = to;
    } else if (to > block.gap_start) {
        const std::ptrdiff_t size = to - block.gap_start;
        std::memmove(block.gap_start, block.gap_end, static_cast<std::size_t>(size));
        block.gap_start += size;
        block.gap_end += size;
    }
}

} // namespace pellux
