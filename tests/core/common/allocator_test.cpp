#include "core/common/allocator.h"

#include "core/common/poison.h"
#include "core/os/pages.h"
#include "tests/core/common/allocator_fixture.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

namespace pellux {
namespace {

TEST(SizeClass, FollowsTheTableAtItsEdges) {
    struct Row {
        std::size_t request;
        unsigned size_class;
        std::uint64_t size;
    };
    for (const Row& row : {Row{0, 2, 8}, Row{4, 2, 8}, Row{5, 3, 12}, Row{252, 64, 256},
                           Row{253, 65, 384}, Row{380, 65, 384}, Row{381, 66, 512},
                           Row{508, 66, 512}, Row{509, 67, 768}, Row{764, 67, 768},
                           Row{765, 68, 1024}, Row{(std::size_t{1} << 40) - 4, 128, 1ull << 40}}) {
        EXPECT_EQ(size_class_of(row.request), row.size_class) << row.request;
        EXPECT_EQ(size_of_class(row.size_class), row.size) << row.request;
    }
    EXPECT_EQ(size_class_of((std::size_t{1} << 40) - 3), 129u);
    for (std::size_t overflowing = SIZE_MAX - 4; overflowing != 0; ++overflowing)
        EXPECT_GT(size_class_of(overflowing), 128u);
}

TEST(SizeClass, IsTheSmallestThatHoldsTheRequest) {
    for (std::size_t n = 5; n < 70'000; ++n) {
        const unsigned size_class = size_class_of(n);
        ASSERT_GE(size_of_class(size_class), n + 4) << n;
        ASSERT_LT(size_of_class(size_class - 1), n + 4) << n;
    }
}

struct LiveBlock {
    unsigned char* bytes;
    std::size_t size;
    unsigned char fill;
};

struct AllocatorModel {
    std::mt19937 random{std::random_device{}()};
    std::vector<LiveBlock> live;

    std::size_t pick_size() {
        switch (random() % 8) {
        case 0:
            return random() % 3;
        case 1:
            return 200 + random() % 400;
        case 2:
            return random() % (random() % 32 == 0 ? 300'000 : 3000);
        }
        return random() % 100;
    }
    void adopt(void* p, std::size_t size) {
        ASSERT_EQ(reinterpret_cast<std::uintptr_t>(p) % 16, 0u);
        ASSERT_TRUE(isValidBlock(p));
        live.push_back(
            {static_cast<unsigned char*>(p), size, static_cast<unsigned char>(random())});
        std::memset(p, live.back().fill, size);
    }
    static void expect_filled(const LiveBlock& block, std::size_t size) {
        const bool intact = std::all_of(block.bytes, block.bytes + size,
                                        [&](unsigned char byte) { return byte == block.fill; });
        ASSERT_TRUE(intact) << block.size;
    }
    LiveBlock take_any() {
        std::swap(live[random() % live.size()], live.back());
        const LiveBlock block = live.back();
        live.pop_back();
        expect_filled(block, block.size);
        return block;
    }
    void resize_any() {
        LiveBlock block = take_any();
        const std::size_t size = pick_size();
        auto* moved = static_cast<unsigned char*>(reallocate(block.bytes, size));
        const bool fits = size + 4 <= size_of_class(size_class_of(block.size));
        ASSERT_TRUE(!fits || moved == block.bytes);
        block.bytes = moved;
        expect_filled(block, std::min(size, block.size));
        // The capacity stays that of the larger size.
        adopt(moved, fits ? std::max(size, block.size) : size);
    }
    void step() {
        const auto choice = random() % 16;
        if (live.empty() || (choice < 7 && live.size() < 3000)) {
            const std::size_t size = pick_size();
            adopt(allocate(size), size);
        } else if (choice == 7) {
            const std::size_t size = pick_size();
            void* zeroed = allocateZeroed(size, 3);
            expect_filled({static_cast<unsigned char*>(zeroed), 0, 0}, size * 3);
            adopt(zeroed, size * 3);
        } else if (choice < 10) {
            resize_any();
        } else {
            release(take_any().bytes);
        }
    }
};

TEST_F(AllocatorTest, KeepsEveryBlockApartInARandomisedRun) {
    AllocatorModel model;
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(seed);
    model.random.seed(seed);
    for (int i = 0; i < 60'000 && !HasFatalFailure(); ++i) {
        model.step();
        if (i % 1000 != 0)
            continue;
        std::uint64_t bytes = before.bytes_in_use;
        for (const LiveBlock& block : model.live)
            bytes += size_of_class(size_class_of(block.size));
        ASSERT_EQ(allocatorStatistics().bytes_in_use, bytes);
        ASSERT_EQ(allocatorStatistics().blocks_in_use, before.blocks_in_use + model.live.size());
        ASSERT_GE(allocatorStatistics().peak_bytes, bytes);
        ASSERT_TRUE(check_allocator());
    }
    while (!model.live.empty())
        release(model.take_any().bytes);
    EXPECT_TRUE(faults.empty());
}

/// Blocks that go back when the test ends.
struct Blocks {
    std::vector<std::byte*> all;

    std::byte* take(std::size_t n) {
        all.push_back(static_cast<std::byte*>(allocate(n)));
        return all.back();
    }
    /// Takes blocks until one comes from a new chunk.
    std::byte* take_from_new_chunk(std::size_t n) {
        const std::uint64_t chunks = allocatorStatistics().chunks;
        std::byte* block = nullptr;
        while (allocatorStatistics().chunks == chunks)
            block = take(n);
        return block;
    }
    ~Blocks() {
        for (std::byte* block : all)
            release(block);
    }
};

TEST_F(AllocatorTest, GivesTheRestOfAChunkToTheFreeListsLargestFirst) {
    Blocks blocks;
    // A block of 196608 bytes takes a chunk of four granules and leaves 65520 bytes.
    std::byte* piece = blocks.take_from_new_chunk(196608 - 4) + 196608;
    EXPECT_EQ(blocks.take_from_new_chunk(65536 - 4) - piece, 65520 + 16);
    EXPECT_TRUE(check_allocator());
    for (const std::size_t size : {49152u, 12288u, 3072u, 768u, 240u}) {
        EXPECT_EQ(blocks.take(size - 4), piece) << size;
        piece += size;
    }
}

TEST_F(AllocatorTest, CountsChunksOfWholeGranules) {
    Blocks blocks;
    for (const auto& [request, chunk] : {std::pair<std::size_t, std::uint64_t>{32764, 65536},
                                         {65532, 131072},
                                         {98300, 131072},
                                         {131068, 196608}}) {
        std::uint64_t bytes = 0;
        const std::uint64_t chunks = allocatorStatistics().chunks;
        while (allocatorStatistics().chunks == chunks) {
            bytes = allocatorStatistics().chunk_bytes;
            blocks.take(request);
        }
        EXPECT_EQ(allocatorStatistics().chunk_bytes - bytes, chunk) << request;
    }
}

struct RefusedSystem {
    int refusals = 0;

    RefusedSystem() {
        set_page_fault_hook(
            [](void* context, std::size_t) {
                ++static_cast<RefusedSystem*>(context)->refusals;
                return true;
            },
            this);
    }
    ~RefusedSystem() { set_page_fault_hook(nullptr, nullptr); }
};

TEST_F(AllocatorTest, BreaksUpALargerFreeBlockWhenTheSystemRefuses) {
    Blocks blocks;
    std::byte* larger = static_cast<std::byte*>(allocate(98304 - 4));
    release(larger);
    const RefusedSystem system;
    const auto take_until_inside = [&](std::size_t n) {
        for (int i = 0; i < 10'000; ++i) {
            std::byte* block = blocks.take(n);
            if (block >= larger && block < larger + 98304)
                return block - larger;
        }
        return std::ptrdiff_t{-1};
    };
    const std::uint64_t chunks = allocatorStatistics().chunks;
    EXPECT_EQ(take_until_inside(65536 - 4), 0);
    EXPECT_TRUE(check_allocator());
    EXPECT_EQ(take_until_inside(24576 - 4), 65536);
    EXPECT_EQ(take_until_inside(8192 - 4), 65536 + 24576);
    EXPECT_EQ(allocatorStatistics().chunks, chunks);
    EXPECT_TRUE(faults.empty());
}

TEST_F(AllocatorTest, TellsOfExhaustionAfterOneRetry) {
    const RefusedSystem system;
    EXPECT_EQ(allocate(std::size_t{1} << 30), nullptr);
    EXPECT_EQ(system.refusals, 2);
    EXPECT_EQ(faults, (Faults{{AllocatorFault::out_of_memory, "out of memory"}}));
    count_exhaustion();
    EXPECT_EQ(allocate(std::size_t{1} << 30), nullptr);
    EXPECT_EQ(exhausted, 1);
    EXPECT_EQ(faults.size(), 1u);
}

TEST_F(AllocatorTest, TreatsOverflowingRequestsAsExhaustion) {
    count_exhaustion();
    for (const std::size_t n : {SIZE_MAX, SIZE_MAX - 3, SIZE_MAX / 2, std::size_t{1} << 40})
        EXPECT_EQ(allocate(n), nullptr);
    EXPECT_EQ(allocateZeroed(SIZE_MAX / 2, 3), nullptr);
    EXPECT_EQ(allocateZeroed(SIZE_MAX / 2 + 1, 2), nullptr);
    EXPECT_EQ(exhausted, 6);
    EXPECT_TRUE(faults.empty());
}

TEST_F(AllocatorTest, FailsTheChosenAllocationAndNoOther) {
    count_exhaustion();
    Blocks blocks;
    char* kept = static_cast<char*>(allocate(10));
    std::memcpy(kept, "survivors", 10);
    fail_allocation(3);
    EXPECT_NE(blocks.take(10), nullptr);
    EXPECT_NE(blocks.take(1000), nullptr);
    EXPECT_EQ(reallocate(kept, 100), nullptr);
    EXPECT_STREQ(kept, "survivors");
    EXPECT_EQ(exhausted, 1);
    EXPECT_NE(blocks.take(10), nullptr);
    release(kept);
}

#if defined(PELLUX_POISON)
TEST_F(AllocatorTest, HidesSlackAndFreeBlocksFromTheSanitizer) {
    auto* volatile block = static_cast<volatile char*>(allocate(5));
    EXPECT_DEATH(block[5] = 1, "use-after-poison");
    void* same = reallocate(const_cast<char*>(block), 8);
    EXPECT_EQ(same, block);
    block[7] = 1;
    EXPECT_DEATH(block[8] = 1, "use-after-poison");
    release(same);
    EXPECT_DEATH(block[0] = 1, "use-after-poison");
}
#endif

} // namespace
} // namespace pellux
