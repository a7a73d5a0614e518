#include "core/common/allocator_state.h"
#include "core/common/containers.h"
#include "tests/core/common/allocator_fixture.h"

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

namespace pellux {
namespace {

std::string report() {
    std::string text;
    memoryReport(sink_to(text));
    return text;
}

std::string line_of(const void* p) {
    char line[40];
    std::snprintf(line, sizeof line, "0x%08lx\t\n", reinterpret_cast<unsigned long>(p));
    return line;
}

constexpr const char* k_all_freed = "Memory_report:  All memory has been freed.\n";
constexpr const char* k_heading = "Memory_report:\n"
                                  "Address\t\tFilename\t\tLine\n"
                                  "_______\t\t________\t\t____\n";

TEST_F(AllocatorTest, TicksAtTheFirstCallAndEveryHundredth) {
    static int ticks;
    ticks = 0;
    const AllocatorTick previous = setAllocatorTick([] { ++ticks; });
    allocator_state.calls_until_tick = AllocatorState{}.calls_until_tick;
    for (int call = 1; call <= 301; call += 2) {
        void* block = allocate(8);
        EXPECT_EQ(ticks, (call - 1) / 100 + 1) << call;
        static_cast<void>(isValidBlock(block));
        // Null is a call too.
        release(call % 4 == 1 ? block : nullptr);
        EXPECT_EQ(ticks, call / 100 + 1) << call;
        if (call % 4 != 1) {
            ++allocator_state.calls_until_tick;
            release(block);
        }
    }
    setAllocatorTick(previous);
}

TEST_F(AllocatorTest, MemoryUseRoundsToTheNearestKilobyte) {
    Vector<Owned<int>> blocks;
    const auto expect_line = [] {
        const AllocatorStatistics use = allocatorStatistics();
        const auto kilobytes = [](std::uint64_t bytes) {
            return std::to_string(bytes / 1024 + (bytes % 1024 >= 512 ? 1 : 0)) + "K";
        };
        std::string text;
        memoryUse(sink_to(text));
        EXPECT_EQ(text, "# Memory use: " + kilobytes(use.bytes_in_use) + " bytes (" +
                            std::to_string(use.blocks_in_use) + " objects) active out of " +
                            kilobytes(use.chunk_bytes) + " bytes allocated (" +
                            kilobytes(use.peak_bytes) + ")\n");
    };
    blocks.reserve(300);
    for (int i = 0; i < 300; ++i) {
        blocks.push_back(make_owned<int>(i));
        expect_line();
    }
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
    void* tracked_too = allocate(500);

    std::string lines = line_of(tracked) + line_of(tracked_too);
    if (tracked_too < tracked)
        lines = line_of(tracked_too) + line_of(tracked);
    EXPECT_EQ(report(), k_heading + lines + "\nNumber of pieces still allocated:  2\n");
    EXPECT_EQ(allocator_state.tracking, 1);

    release(tracked);
    release(tracked_too);
    EXPECT_EQ(report(), k_all_freed);
    release(untracked);
    release(still_untracked);
}

TEST_F(AllocatorTest, ReportsMoreBlocksThanOneWalkCollects) {
    std::vector<void*> blocks(5000);
    for (void*& block : blocks)
        block = allocate(static_cast<std::size_t>(&block - blocks.data()) % 300);
    for (std::size_t i = 0; i < blocks.size(); i += 3)
        release(std::exchange(blocks[i], nullptr));
    std::erase(blocks, nullptr);
    std::sort(blocks.begin(), blocks.end());
    std::string expected = k_heading;
    for (const void* block : blocks)
        expected += line_of(block);
    expected += "\nNumber of pieces still allocated:  " + std::to_string(blocks.size()) + "\n";

    // The sink allocates meanwhile, as a window's would.
    String text;
    memoryReport(
        {.write = [](void* context,
                     std::string_view part) { static_cast<String*>(context)->append(part); },
         .context = &text});
    EXPECT_EQ(view(text), expected);
    EXPECT_TRUE(check_allocator());
    for (void* block : blocks)
        release(block);
}

} // namespace
} // namespace pellux
