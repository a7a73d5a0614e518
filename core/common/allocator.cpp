#include "core/common/allocator.h"

#include "core/common/allocator_state.h"

#include <bit>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace pellux {

constinit AllocatorState allocator_state;

namespace {

constexpr std::uint64_t k_largest_range = std::uint64_t{32} << 30;
constexpr std::uint32_t k_calls_per_tick = 100;

void report_fault(const AllocatorState& state, AllocatorFault fault, const char* text) {
    if (state.fault_handler != nullptr) {
        state.fault_handler(fault, text);
        return;
    }
    std::fprintf(stderr, "Memory allocation:  %s\n", text);
    std::_Exit(255);
}

inline void count_call(AllocatorState& state) {
    if (--state.calls_until_tick == 0) [[unlikely]] {
        state.calls_until_tick = k_calls_per_tick;
        if (state.tick != nullptr)
            state.tick();
    }
}

inline void* hand_out(AllocatorState& state, BlockIndex block, unsigned size_class, std::size_t n) {
    write_word(header_at(state, block), state.live_header | size_class);
    ++state.blocks_in_use;
    state.bytes_in_use += k_class_sizes[size_class];
    if (state.bytes_in_use > state.peak_bytes)
        state.peak_bytes = state.bytes_in_use;
    std::byte* user = block_at(state, block);
    unpoison(user, n);
    return user;
}

inline void push_free(AllocatorState& state, BlockIndex block, unsigned size_class) {
    write_word(header_at(state, block), state.free_heads[size_class]);
    state.free_heads[size_class] = block;
}

inline BlockIndex pop_free(AllocatorState& state, unsigned size_class) {
    const BlockIndex block = state.free_heads[size_class];
    const BlockIndex following = read_word(header_at(state, block));
    state.free_heads[size_class] = following;
    // The next request of the class reads the following block's link and its owner writes there.
    __builtin_prefetch(header_at(state, following), 1);
    return block;
}

inline void take_back(AllocatorState& state, BlockIndex block, unsigned size_class) {
    --state.blocks_in_use;
    state.bytes_in_use -= k_class_sizes[size_class];
    poison(block_at(state, block), capacity_of_class(size_class));
    push_free(state, block, size_class);
}

void give_back_rest(AllocatorState& state) {
    while (state.rest_bytes != 0) {
        unsigned size_class = compute_class(state.rest_bytes - k_header_bytes);
        if (k_class_sizes[size_class] > state.rest_bytes)
            --size_class;
        // The rest is whole units, and so is every class size not above it that is found here.
        push_free(state, state.next_block, size_class);
        state.next_block += static_cast<BlockIndex>(k_class_sizes[size_class] / k_unit);
        state.rest_bytes -= k_class_sizes[size_class];
    }
}

bool reserve_range(AllocatorState& state) {
    for (std::uint64_t bytes = k_largest_range; bytes >= k_chunk_granule; bytes /= 2) {
        if (reserve_pages(state.range, bytes)) {
            state.base = state.range.base;
            search_for_pointers(state.base, bytes);
            return true;
        }
    }
    return false;
}

bool take_chunk(AllocatorState& state, unsigned size_class) {
    if (state.base == nullptr && !reserve_range(state))
        return false;
    const std::uint64_t granules = k_class_sizes[size_class] / k_chunk_granule + 1;
    const std::uint64_t bytes = granules * k_chunk_granule;
    std::byte* chunk = commit_pages(state.range, bytes);
    if (chunk == nullptr)
        return false;
    write_word(chunk, static_cast<std::uint32_t>(granules));
    poison(chunk, bytes);
    ++state.chunks;
    state.next_block =
        static_cast<BlockIndex>(static_cast<std::uint64_t>(chunk - state.base) / k_unit + 1);
    state.rest_bytes = bytes - k_unit;
    state.last_index = state.range.committed / k_unit - 1;
    state.pop_limit = state.failing_allocation != 0 ? 0 : state.last_index;
    return true;
}

/// Makes the first free block of a class above the chunk to carve from.
bool break_up_larger(AllocatorState& state, unsigned size_class) {
    for (unsigned larger = size_class + 1; larger < k_class_count; ++larger) {
        if (!is_possible_index(state, state.free_heads[larger]))
            continue;
        state.next_block = pop_free(state, larger);
        state.rest_bytes = room_of_class(larger);
        return true;
    }
    return false;
}

BlockIndex carve(AllocatorState& state, unsigned size_class) {
    const std::uint64_t room = room_of_class(size_class);
    if (state.rest_bytes < room) {
        give_back_rest(state);
        const auto refill = [&] {
            return take_chunk(state, size_class) || break_up_larger(state, size_class);
        };
        for (int attempts = 1; !refill(); ++attempts) {
            if (attempts == 2)
                return 0;
        }
    }
    const BlockIndex block = state.next_block;
    state.next_block += static_cast<BlockIndex>(room / k_unit);
    state.rest_bytes -= room;
    return block;
}

void* no_memory(const AllocatorState& state) {
    if (state.out_of_memory_handler != nullptr)
        state.out_of_memory_handler();
    else
        report_fault(state, AllocatorFault::out_of_memory, "out of memory");
    return nullptr;
}

[[gnu::noinline]] void* allocate_slowly(AllocatorState& state, unsigned size_class, std::size_t n) {
    if (state.failing_allocation != 0 && --state.failing_allocation == 0) {
        state.pop_limit = state.last_index;
        return no_memory(state);
    }
    if (size_class >= k_class_count)
        return no_memory(state);
    const BlockIndex head = state.free_heads[size_class];
    if (head != 0 && !is_possible_index(state, head)) {
        report_fault(state, AllocatorFault::free_list_corrupted,
                     "free list was corrupted somehow ...");
        return nullptr;
    }
    const BlockIndex block = head != 0 ? pop_free(state, size_class) : carve(state, size_class);
    if (block == 0)
        return no_memory(state);
    return hand_out(state, block, size_class, n);
}

/// What an address handed to `release` or `reallocate` turns out to be.
enum class Pointer { live, bogus, already_free, corrupt };

std::uint64_t offset_of(const AllocatorState& state, const void* p) {
    return reinterpret_cast<std::uintptr_t>(p) - reinterpret_cast<std::uintptr_t>(state.base);
}

bool has_header_in_range(const AllocatorState& state, const void* p) {
    return offset_of(state, p) - k_header_bytes < state.range.committed;
}

bool has_live_header(const AllocatorState& state, const void* p) {
    return offset_of(state, p) % k_unit == 0 &&
           is_live_header(read_word(static_cast<const std::byte*>(p) - k_header_bytes));
}

unsigned class_of_live(const void* p) {
    return read_word(static_cast<const std::byte*>(p) - k_header_bytes) & k_class_mask;
}

bool is_on_free_list(const AllocatorState& state, const void* p) {
    const std::uint64_t wanted = offset_of(state, p);
    // A damaged link may close a circle: no list holds more blocks than the range has units.
    std::uint64_t steps = state.last_index;
    for (BlockIndex block : state.free_heads) {
        for (; is_possible_index(state, block) && steps != 0; --steps) {
            if (std::uint64_t{block} * k_unit == wanted)
                return true;
            block = read_word(header_at(state, block));
        }
    }
    return false;
}

Pointer inspect(const AllocatorState& state, const void* p) {
    if (!has_header_in_range(state, p))
        return Pointer::bogus;
    if (has_live_header(state, p))
        return Pointer::live;
    return is_on_free_list(state, p) ? Pointer::already_free : Pointer::corrupt;
}

[[gnu::noinline]] void release_slowly(AllocatorState& state, void* p) {
    if (p == nullptr)
        return;
    switch (inspect(state, p)) {
    case Pointer::live: {
        const std::uint32_t header = read_word(static_cast<std::byte*>(p) - k_header_bytes);
        if ((header & k_kept_bit) == 0)
            take_back(state, static_cast<BlockIndex>(offset_of(state, p) / k_unit),
                      header & k_class_mask);
        return;
    }
    case Pointer::bogus:
        report_fault(state, AllocatorFault::bad_pointer, "attempt to free() bogus pointer");
        return;
    case Pointer::already_free:
        report_fault(state, AllocatorFault::already_free,
                     "attempt to free() pointer which is already free");
        return;
    case Pointer::corrupt:
        report_fault(state, AllocatorFault::bad_pointer, "attempt to free() corrupt pointer");
        return;
    }
}

void* grow(void* p, std::size_t n) {
    const std::uint64_t capacity = capacity_of_class(class_of_live(p));
    if (n <= capacity) {
        unpoison(p, n);
        return p;
    }
    void* larger = allocate(n);
    if (larger == nullptr)
        return nullptr;
    unpoison(p, capacity);
    std::memcpy(larger, p, capacity);
    release(p);
    return larger;
}

} // namespace

void* allocate(std::size_t n) {
    AllocatorState& state = allocator_state;
    count_call(state);
    const unsigned size_class =
        n <= k_largest_tabled_request ? k_request_classes[(n + 3) / 4] : compute_class(n);
    if (size_class >= k_class_count) [[unlikely]]
        return allocate_slowly(state, size_class, n);
    // An empty list's 0 wraps, so that one comparison finds it, a damaged head and a full chunk.
    if (std::uint64_t{state.free_heads[size_class]} - 1 >= state.pop_limit) [[unlikely]]
        return allocate_slowly(state, size_class, n);
    return hand_out(state, pop_free(state, size_class), size_class, n);
}

void release(void* p) {
    AllocatorState& state = allocator_state;
    count_call(state);
    // The rotation puts the bits that an aligned address lacks on top, out of any range.
    const std::uint64_t index = std::rotr(offset_of(state, p), 4);
    if (!is_possible_index(state, index)) [[unlikely]]
        return release_slowly(state, p);
    const std::uint32_t header = read_word(static_cast<std::byte*>(p) - k_header_bytes);
    const std::uint32_t size_class = (header & ~k_tracked_bit) - k_magic;
    if (size_class >= k_class_count) [[unlikely]]
        return release_slowly(state, p);
    take_back(state, static_cast<BlockIndex>(index), size_class);
}

void* reallocate(void* p, std::size_t n) {
    if (p == nullptr)
        return allocate(n);
    const AllocatorState& state = allocator_state;
    switch (inspect(state, p)) {
    case Pointer::live:
        return grow(p, n);
    case Pointer::bogus:
        report_fault(state, AllocatorFault::bad_pointer, "attempt to realloc() bogus pointer");
        return nullptr;
    case Pointer::already_free:
        report_fault(state, AllocatorFault::already_free,
                     "attempt to realloc() an already free pointer");
        return nullptr;
    case Pointer::corrupt:
        report_fault(state, AllocatorFault::bad_pointer, "attempt to realloc() corrupt pointer");
        return nullptr;
    }
    return nullptr;
}

void* allocateZeroed(std::size_t count, std::size_t size) {
    std::size_t bytes = 0;
    if (__builtin_mul_overflow(count, size, &bytes))
        bytes = SIZE_MAX;
    void* memory = allocate(bytes);
    if (memory != nullptr)
        std::memset(memory, 0, bytes);
    return memory;
}

bool isValidBlock(const void* p) {
    const AllocatorState& state = allocator_state;
    return has_header_in_range(state, p) && offset_of(state, p) < state.range.committed &&
           has_live_header(state, p);
}

AllocatorFaultHandler setAllocatorFaultHandler(AllocatorFaultHandler handler) {
    return std::exchange(allocator_state.fault_handler, handler);
}

OutOfMemoryHandler setOutOfMemoryHandler(OutOfMemoryHandler handler) {
    return std::exchange(allocator_state.out_of_memory_handler, handler);
}

AllocatorTick setAllocatorTick(AllocatorTick tick) {
    return std::exchange(allocator_state.tick, tick);
}

void fail_allocation(std::uint64_t nth) {
    AllocatorState& state = allocator_state;
    state.failing_allocation = nth;
    state.pop_limit = nth != 0 ? 0 : state.last_index;
}

unsigned size_class_of(std::size_t n) {
    return compute_class(n);
}

std::uint64_t size_of_class(unsigned size_class) {
    return compute_class_size(size_class);
}

} // namespace pellux
