#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace pellux {

// The checked allocator: size classes on 64 KB chunks of one reserved range, a magic word before
// every block. User addresses lie on 16. Single-threaded; usable before `main`.

/// `n` bytes, not cleared; 0 bytes are a block too. Null only when an out-of-memory or fault
/// handler returned.
[[nodiscard]] void* allocate(std::size_t n);
/// Null does nothing; anything that is not a live block is a fault.
void release(void* p);
/// The same block when its capacity suffices (blocks never shrink), else a new one with the old
/// contents. Null `p` is `allocate`.
[[nodiscard]] void* reallocate(void* p, std::size_t n);
[[nodiscard]] void* allocateZeroed(std::size_t count, std::size_t size);

/// Does `p` lie in the allocator's range, with a live block's header?
[[nodiscard]] bool isValidBlock(const void* p);

/// What the allocator found wrong; the values are the codes of its reports.
enum class AllocatorFault : int {
    out_of_memory = -1,
    free_list_corrupted = -2,
    bad_pointer = -3,
    already_free = -4,
};

/// Told of every fault, with its text; ends the program. Diagnostics installs the reporter's abort.
using AllocatorFaultHandler = void (*)(AllocatorFault fault, const char* text);
/// Returns the previous one. Null is the default: the text on standard error and exit status 255.
AllocatorFaultHandler setAllocatorFaultHandler(AllocatorFaultHandler handler);

/// Asked instead of the fault handler when memory is exhausted; null removes it. Returns the
/// previous one.
using OutOfMemoryHandler = void (*)();
OutOfMemoryHandler setOutOfMemoryHandler(OutOfMemoryHandler handler);

/// Called at the first call and then at every hundredth, before any block is taken; must not
/// allocate.
using AllocatorTick = void (*)();
AllocatorTick setAllocatorTick(AllocatorTick tick);

/// Takes text lines or parts of them from the reports below.
struct TextSink {
    void (*write)(void* context, std::string_view text) = nullptr;
    void* context = nullptr;
};

struct AllocatorStatistics {
    std::uint64_t blocks_in_use = 0;
    std::uint64_t bytes_in_use = 0; ///< class sizes
    std::uint64_t peak_bytes = 0;
    std::uint64_t chunks = 0;
    std::uint64_t chunk_bytes = 0;
};
[[nodiscard]] AllocatorStatistics allocatorStatistics();

/// Writes the one line of memory use.
void memoryUse(TextSink stream);

// Blocks allocated while the nesting counter is above 0 (it starts at 1) are tracked until they
// are released. What lives until exit is allocated with tracking suspended.
void suspendTracking();
void resumeTracking();
/// Writes the tracked blocks that are still allocated to standard error, or to `stream`.
void memoryReport();
void memoryReport(TextSink stream);

/// While one is alive, new blocks are not tracked.
struct TrackingSuspended {
    TrackingSuspended() { suspendTracking(); }
    ~TrackingSuspended() { resumeTracking(); }
    TrackingSuspended(const TrackingSuspended&) = delete;
    TrackingSuspended& operator=(const TrackingSuspended&) = delete;
};

/// Class index of a request of `n` bytes; above 128 no block can hold it.
[[nodiscard]] unsigned size_class_of(std::size_t n);
/// Block size of a class (0 to 128) in bytes, header included, before rounding up to 16.
[[nodiscard]] std::uint64_t size_of_class(unsigned size_class);

/// Walks chunks and free lists; false when an invariant is broken. For tests.
[[nodiscard]] bool check_allocator();

/// Tests make the n-th allocation from now (1 is the next) find no memory; 0 ends that.
void fail_allocation(std::uint64_t nth);

} // namespace pellux
