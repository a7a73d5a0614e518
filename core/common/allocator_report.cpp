#include "core/common/allocator_state.h"

#include <array>
#include <cstdio>
#include <utility>

namespace pellux {

namespace {

void set_tracking(int tracking) {
    allocator_state.tracking = tracking;
    allocator_state.live_header = k_magic | (tracking > 0 ? k_tracked_bit : 0);
}

unsigned long to_kilobytes(std::uint64_t bytes) {
    return static_cast<unsigned long>((bytes + 512) / 1024);
}

template <typename... Values>
void write_line(TextSink stream, const char* format, Values... values) {
    std::array<char, 160> line;
    const int length = std::snprintf(line.data(), line.size(), format, values...);
    stream.write(stream.context, {line.data(), static_cast<std::size_t>(length)});
}

/// Tracked blocks behind one address: the walk that finds them allows no output in between.
struct TrackedBatch {
    BlockIndex after = 0;
    std::size_t count = 0;
    std::array<BlockIndex, 2048> blocks;
};

void collect_tracked(void* context, const SeenBlock& seen) {
    auto& batch = *static_cast<TrackedBatch*>(context);
    const bool tracked = (seen.header & k_tracked_bit) != 0;
    if (tracked && seen.block > batch.after && batch.count < batch.blocks.size())
        batch.blocks[batch.count++] = seen.block;
}

} // namespace

void suspendTracking() {
    set_tracking(allocator_state.tracking - 1);
}

void resumeTracking() {
    set_tracking(allocator_state.tracking + 1);
}

AllocatorStatistics allocatorStatistics() {
    const AllocatorState& state = allocator_state;
    return {.blocks_in_use = state.blocks_in_use,
            .bytes_in_use = state.bytes_in_use,
            .peak_bytes = state.peak_bytes,
            .chunks = state.chunks,
            .chunk_bytes = state.range.committed};
}

void memoryUse(TextSink stream) {
    const AllocatorStatistics use = allocatorStatistics();
    write_line(stream, "# Memory use: %luK bytes (%lu objects) active",
               to_kilobytes(use.bytes_in_use), static_cast<unsigned long>(use.blocks_in_use));
    write_line(stream, " out of %luK bytes allocated (%luK)\n", to_kilobytes(use.chunk_bytes),
               to_kilobytes(use.peak_bytes));
}

void memoryReport(TextSink stream) {
    const int tracking = allocator_state.tracking;
    set_tracking(0);
    TrackedBatch batch;
    unsigned long pieces = 0;
    do {
        batch.count = 0;
        static_cast<void>(walk_blocks(collect_tracked, &batch));
        if (pieces == 0 && batch.count != 0) {
            stream.write(stream.context, "Memory_report:\n"
                                         "Address\t\tFilename\t\tLine\n"
                                         "_______\t\t________\t\t____\n");
        }
        for (std::size_t i = 0; i < batch.count; ++i) {
            const std::byte* address = block_at(allocator_state, batch.blocks[i]);
            write_line(stream, "0x%08lx\t\n", reinterpret_cast<unsigned long>(address));
            batch.after = batch.blocks[i];
        }
        pieces += batch.count;
    } while (batch.count == batch.blocks.size());
    if (pieces == 0)
        stream.write(stream.context, "Memory_report:  All memory has been freed.\n");
    else
        write_line(stream, "\nNumber of pieces still allocated:  %lu\n", pieces);
    set_tracking(tracking);
}

void memoryReport() {
    const auto write = [](void*, std::string_view text) {
        std::fwrite(text.data(), 1, text.size(), stderr);
    };
    memoryReport({.write = write});
}

} // namespace pellux
