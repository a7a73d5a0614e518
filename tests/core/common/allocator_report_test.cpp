#include "core/common/allocator_state.h"
#include "core/common/containers.h"
#include "tests/core/common/allocator_fixture.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

namespace pellux {
namespace {

/// The report; its sink allocates meanwhile, as a window's would.
std::string report() {
    String text;
    memoryReport(sink_to(text));
    return std::string(view(text));
}

std::string report_of(std::vector<void*> blocks) {
    std::string text = "Memory_report:\n"
                       "Address\t\tFilename\t\tLine\n"
                       "_______\t\t________\t\t____\n";
    std::sort(blocks.begin(), blocks.end());
    for (const void* block : blocks) {
        char line[40];
        std::snprintf(line, sizeof line, "0x%08lx\t\n", reinterpret_cast<unsigned long>(block));
        text += line;
    }
    return text + "\nNumber of pieces still allocated:  " + std::to_string(blocks.size()) + "\n";
}

constexpr const char* k_all_freed = "Memory_report:  All memory has been freed.\n";

TEST_F(AllocatorTest, TicksAtTheFirstCallAndEveryHundredth) {
    static int ticks;
    ticks = 0;
    const AllocatorTick previous = setAllocatorTick([] { ++ticks; });
    allocator_state.calls_until_tick = AllocatorState{}.calls_until_tick;
    void* block = nullptr;
    for (int call = 1; call <= 303; ++call) {
        if (call % 3 == 1)
            block = allocate(8);
        else // the second time null, which is a call too
            release(std::exchange(block, nullptr));
        EXPECT_EQ(ticks, (call - 1) / 100 + 1) << call;
        static_cast<void>(isValidBlock(block));
    }
    setAllocatorTick(previous);
}

TEST_F(AllocatorTest, MemoryUseRoundsToTheNearestKilobyte) {
    const AllocatorStatistics use = allocatorStatistics();
    AllocatorState& state = allocator_state;
    state.blocks_in_use = 3;
    state.bytes_in_use = 1535;
    state.peak_bytes = 1536;
    std::string text;
    memoryUse(sink_to(text));
    EXPECT_EQ(text, "# Memory use: 1K bytes (3 objects) active out of " +
                        std::to_string(use.chunk_bytes / 1024) + "K bytes allocated (2K)\n");
    state.blocks_in_use = use.blocks_in_use;
    state.bytes_in_use = use.bytes_in_use;
    state.peak_bytes = use.peak_bytes;
}

TEST_F(AllocatorTest, ReportsTrackedBlocksOnly) {
    EXPECT_EQ(report(), k_all_freed);
    void* tracked = allocate(10);
    suspendTracking();
    void* untracked = allocate(10);
    suspendTracking();
    resumeTracking();
    void* still_untracked = allocate(10);
    resumeTracking();
    resumeTracking();
    suspendTracking();
    // More blocks than one walk collects, and free ones between them.
    std::vector<void*> blocks{tracked};
    for (std::size_t i = 0; i < 5000; ++i) {
        blocks.push_back(allocate(i % 300));
        release(std::exchange(blocks[i / 2], allocate(i % 200)));
    }
    EXPECT_EQ(report(), report_of(blocks));
    EXPECT_EQ(allocator_state.tracking, 1);
    for (void* block : blocks)
        release(block);
    EXPECT_EQ(report(), k_all_freed);
    release(untracked);
    release(still_untracked);
}

} // namespace
} // namespace pellux
