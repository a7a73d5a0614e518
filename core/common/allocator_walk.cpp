#include "core/common/allocator_state.h"

namespace pellux {

namespace {

/// Header of a free block while the chunks are walked, with its class below; the link waits in the
/// user's bytes. No link and no live header looks like it.
constexpr std::uint32_t k_free_mark = 0x80000000;

bool is_free_mark(std::uint32_t header) {
    return (header & ~k_class_mask) == k_free_mark;
}

bool mark_free_blocks(const AllocatorState& state) {
    for (unsigned c = 0; c < k_class_count; ++c) {
        for (BlockIndex block = state.free_heads[c]; block != 0;) {
            if (!is_possible_index(state, block))
                return false;
            const BlockIndex following = read_word(header_at(state, block));
            if (following >= k_free_mark)
                return false;
            write_word(block_at(state, block), following);
            write_word(header_at(state, block), k_free_mark | c);
            block = following;
        }
    }
    return true;
}

void unmark_free_blocks(const AllocatorState& state) {
    for (BlockIndex block : state.free_heads) {
        while (is_possible_index(state, block) &&
               is_free_mark(read_word(header_at(state, block)))) {
            const BlockIndex following = read_word(block_at(state, block));
            write_word(header_at(state, block), following);
            block = following;
        }
    }
}

/// Visits the blocks from `block` to `end`; false when they do not end there.
bool walk_chunk(const AllocatorState& state, std::uint64_t block, std::uint64_t end,
                BlockVisitor visit, void* context) {
    while (block < end) {
        if (block == state.next_block && state.rest_bytes != 0) {
            block += state.rest_bytes / k_unit;
            continue;
        }
        const auto index = static_cast<BlockIndex>(block);
        const std::uint32_t header = read_word(header_at(state, index));
        const unsigned size_class = header & k_class_mask;
        const bool is_free = is_free_mark(header);
        if (!(is_free || is_live_header(header)) || size_class < 2 || size_class >= k_class_count)
            return false;
        visit(context, {index, size_class, is_free ? 0 : header});
        block += room_of_class(size_class) / k_unit;
    }
    return block == end;
}

bool walk_chunks(const AllocatorState& state, BlockVisitor visit, void* context) {
    std::uint64_t chunks = 0;
    for (std::size_t offset = 0; offset < state.range.committed; ++chunks) {
        const std::size_t bytes = read_word(state.base + offset) * k_chunk_granule;
        if (bytes == 0 || bytes > state.range.committed - offset)
            return false;
        const std::uint64_t first = offset / k_unit + 1;
        if (!walk_chunk(state, first, first + bytes / k_unit - 1, visit, context))
            return false;
        offset += bytes;
    }
    return chunks == state.chunks;
}

struct Census {
    std::uint64_t blocks = 0;
    std::uint64_t bytes = 0;
};

void count_live(void* context, const SeenBlock& seen) {
    if (seen.header == 0)
        return;
    auto& census = *static_cast<Census*>(context);
    ++census.blocks;
    census.bytes += k_class_sizes[seen.size_class];
}

} // namespace

bool walk_blocks(BlockVisitor visit, void* context) {
    const AllocatorState& state = allocator_state;
    const bool whole = mark_free_blocks(state) && walk_chunks(state, visit, context);
    unmark_free_blocks(state);
    return whole;
}

bool check_allocator() {
    const AllocatorState& state = allocator_state;
    Census census;
    return walk_blocks(count_live, &census) && census.blocks == state.blocks_in_use &&
           census.bytes == state.bytes_in_use && state.bytes_in_use <= state.peak_bytes &&
           state.rest_bytes % k_unit == 0;
}

} // namespace pellux
