#pragma once

#include "core/text/text_block.h"

namespace pellux {

struct IndexInner;

struct IndexNode {
    IndexInner* parent = nullptr;
    int count = 0;        ///< of the children
    mutable int slot = 0; ///< where it was found last in its parent
};

/// Counts the blocks of a part of the text. A cache line holds a count of 32 blocks: what has to be
/// read of a leaf to go down through it decides how fast a place is found.
struct IndexLeaf : IndexNode {
    static constexpr int k_width = 64;
    using Child = TextBlock;

    std::uint16_t bytes[k_width];
    std::uint16_t line_ends[k_width];
    std::uint16_t continuations[k_width];
    TextBlock* children[k_width];
};

struct IndexInner : IndexNode {
    static constexpr int k_width = 32;
    using Child = IndexNode;

    bool is_above_leaves = false;
    std::int64_t bytes[k_width];
    std::int64_t line_ends[k_width];
    std::int64_t continuations[k_width];
    IndexNode* children[k_width];
};

/// Balanced tree over the blocks of a text: finds the block of a place, and the place of a block,
/// in the logarithm of their number. Blocks are borrowed, the nodes are its own.
struct TextIndex {
    IndexNode* root = nullptr;
    int height = 0; ///< inner nodes above a leaf
    TextCounts total;

    TextIndex();
    ~TextIndex();
    TextIndex(const TextIndex&) = delete;
    TextIndex& operator=(const TextIndex&) = delete;
};

/// Enters a block behind `known`, as the first one where that is null.
void index_insert(TextIndex& index, TextBlock* known, TextBlock& block, const TextCounts& counts);
void index_remove(TextIndex& index, TextBlock& block);
/// Changes what is counted of a block by `change`.
void index_add(TextIndex& index, const TextBlock& block, const TextCounts& change);

/// What is counted of the text before the block.
[[nodiscard]] TextCounts counts_before(const TextBlock& block);
[[nodiscard]] TextCounts counts_of(const TextBlock& block);

/// What is counted on the way to a place.
enum class IndexSums { bytes_and_line_ends, all };

struct IndexPlace {
    TextBlock* block = nullptr;
    TextCounts before; ///< of the text before the block, as far as asked for
    TextCounts counts; ///< of the block
};
/// The block of the byte at `offset`; the last one for the end of the text.
[[nodiscard]] IndexPlace find_byte(const TextIndex& index, ByteOffset offset,
                                   IndexSums sums = IndexSums::bytes_and_line_ends);
/// The block of the line end of that number, from 0; there are more than that. Bytes and line ends
/// are counted.
[[nodiscard]] IndexPlace find_line_end(const TextIndex& index, std::int64_t number);
/// The block of the byte that is no continuation and of that number, from 0; the last one when
/// there are not that many.
[[nodiscard]] IndexPlace find_character(const TextIndex& index, std::int64_t number);

/// Walks the tree beside the chain that begins with `first`; false when a sum or a link is wrong.
/// For tests.
[[nodiscard]] bool check_index(const TextIndex& index, const TextBlock* first);

} // namespace pellux
