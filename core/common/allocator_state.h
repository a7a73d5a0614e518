#pragma once

#include "core/common/allocator.h"
#include "core/common/poison.h"
#include "core/common/size_class.h"
#include "core/os/pages.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace pellux {

// Private to the allocator's sources.
//
// A block, at 12 modulo 16:
//   0  4  header: in use, the word below; free, the BlockIndex of the next free block of its class
//   4  -  the user's bytes, on 16
// A chunk, on 65536:
//   0  4  its size in units of 65536
//   12 -  blocks, up to 4 bytes before its end

/// (user address - base) / 16; 0 is none. A range of at most 32 GiB keeps it below 0x80000000.
using BlockIndex = std::uint32_t;

inline constexpr std::uint32_t k_magic = 0xA5A50000;
inline constexpr std::uint32_t k_magic_mask = 0xFFFF0000;
inline constexpr std::uint32_t k_class_mask = 0x0FFF;
inline constexpr std::uint32_t k_kept_bit = 0x1000;    ///< release leaves the block alone
inline constexpr std::uint32_t k_tracked_bit = 0x2000; ///< the memory report shows the block
inline constexpr std::size_t k_chunk_granule = 65536;

/// The one allocator; constant-initialised, so that static objects may allocate.
struct AllocatorState {
    // What every call reads comes first, to share cache lines.
    std::uint32_t calls_until_tick = 1;
    std::uint32_t live_header = k_magic | k_tracked_bit; ///< header of a new block, less its class
    std::byte* base = nullptr;
    // The two sums lie apart: updated as one vector, they would stall the single loads that follow.
    std::uint64_t blocks_in_use = 0;
    std::uint64_t last_index = 0; ///< highest possible block index
    std::uint64_t pop_limit = 0;  ///< `last_index`, or 0 to send every allocation the long way
    std::uint64_t bytes_in_use = 0;
    std::uint64_t peak_bytes = 0;
    std::array<BlockIndex, k_class_count> free_heads{};

    BlockIndex next_block = 0;    ///< where the current chunk's rest begins
    std::uint64_t rest_bytes = 0; ///< a multiple of 16
    PageRange range;
    std::uint64_t chunks = 0;
    int tracking = 1;
    std::uint64_t failing_allocation = 0; ///< allocations until one finds no memory; 0 for never
    AllocatorFaultHandler fault_handler = nullptr;
    OutOfMemoryHandler out_of_memory_handler = nullptr;
    AllocatorTick tick = nullptr;
};

extern constinit AllocatorState allocator_state;

/// 32-bit word that may lie over anything.
using MemoryWord [[gnu::may_alias]] = std::uint32_t;

PELLUX_UNPOISONED_ACCESS inline std::uint32_t read_word(const void* at) {
    return *static_cast<const MemoryWord*>(at);
}

PELLUX_UNPOISONED_ACCESS inline void write_word(void* at, std::uint32_t value) {
    *static_cast<MemoryWord*>(at) = value;
}

/// The user's address of a block.
inline std::byte* block_at(const AllocatorState& state, BlockIndex block) {
    return state.base + std::uint64_t{block} * k_unit;
}

inline std::byte* header_at(const AllocatorState& state, BlockIndex block) {
    return block_at(state, block) - k_header_bytes;
}

inline bool is_possible_index(const AllocatorState& state, std::uint64_t index) {
    return index - 1 < state.last_index;
}

inline bool is_live_header(std::uint32_t header) {
    return (header & k_magic_mask) == k_magic && (header & k_class_mask) < k_class_count;
}

/// A block seen by `walk_blocks`; a free one has the header 0.
struct SeenBlock {
    BlockIndex block = 0;
    unsigned size_class = 0;
    std::uint32_t header = 0;
};
using BlockVisitor = void (*)(void* context, const SeenBlock& seen);

/// Visits every block in address order; false when the chunks and free lists do not fit together.
/// The visitor must not allocate or release.
bool walk_blocks(BlockVisitor visit, void* context);

} // namespace pellux
