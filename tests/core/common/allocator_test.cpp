#include "core/common/allocator.h"

#include "core/common/poison.h"
#include "core/os/pages.h"
#include "tests/core/common/allocator_fixture.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

namespace pellux {
namespace {

TEST(SizeClass, IsTheSmallestThatHoldsTheRequest) {
    const std::size_t largest = (std::size_t{1} << 40) - 4;
    const std::pair<std::size_t, unsigned> rows[] = {
        {0, 2},    {4, 2},     {5, 3},         {252, 64},
        {253, 65}, {1020, 68}, {largest, 128}, {largest + 1, 129}};
    for (const auto& [request, size_class] : rows)
        EXPECT_EQ(size_class_of(request), size_class) << request;
    for (std::size_t overflowing = SIZE_MAX - 4; overflowing != 0; ++overflowing)
        EXPECT_GT(size_class_of(overflowing), 128u);
    EXPECT_EQ(size_of_class(2), 8u);
    EXPECT_EQ(size_of_class(128), std::uint64_t{1} << 40);
    for (std::size_t n = 5; n < 70'000; ++n) {
        const unsigned size_class = size_class_of(n);
        ASSERT_GE(size_of_class(size_class), n + 4) << n;
        ASSERT_LT(size_of_class(size_class - 1), n + 4) << n;
    }
}

struct RandomisedAllocator : AllocatorTest {
    struct Block {
        unsigned char* bytes;
        std::size_t size;
        unsigned char fill;
    };
    std::vector<Block> live;

    std::size_t pick_size() {
        constexpr std::size_t k_spans[] = {3, 600, 3000, 100, 100, 100, 100, 100};
        return random() % (random() % 256 == 0 ? 300'000 : k_spans[random() % 8]);
    }
    void adopt(void* p, std::size_t size) {
        ASSERT_EQ(reinterpret_cast<std::uintptr_t>(p) % 16, 0u);
        ASSERT_TRUE(isValidBlock(p));
        const auto fill = static_cast<unsigned char>(random());
        live.push_back({static_cast<unsigned char*>(std::memset(p, fill, size)), size, fill});
    }
    static void expect_filled(const void* p, std::size_t size, unsigned char fill) {
        const std::string_view bytes(static_cast<const char*>(p), size);
        ASSERT_EQ(bytes.find_first_not_of(static_cast<char>(fill)), bytes.npos);
    }
    Block take_any() {
        std::swap(live[random() % live.size()], live.back());
        const Block block = live.back();
        live.pop_back();
        expect_filled(block.bytes, block.size, block.fill);
        return block;
    }
    void resize_any(std::size_t size) {
        const Block block = take_any();
        void* moved = reallocate(block.bytes, size);
        const bool fits = size + 4 <= size_of_class(size_class_of(block.size));
        ASSERT_TRUE(!fits || moved == block.bytes);
        expect_filled(moved, std::min(size, block.size), block.fill);
        // The capacity stays that of the larger size.
        adopt(moved, fits ? std::max(size, block.size) : size);
    }
    void step() {
        const auto choice = random() % 16;
        const std::size_t size = pick_size();
        if (live.empty() || (choice < 7 && live.size() < 3000)) {
            adopt(allocate(size), size);
        } else if (choice == 7) {
            void* zeroed = allocateZeroed(size, 3);
            expect_filled(zeroed, size * 3, 0);
            adopt(zeroed, size * 3);
        } else if (choice < 10) {
            resize_any(size);
        } else {
            release(take_any().bytes);
        }
    }
};

TEST_F(RandomisedAllocator, KeepsEveryBlockApart) {
    for (int i = 0; i < 60'000 && !HasFatalFailure(); ++i) {
        step();
        if (i % 1000 != 0)
            continue;
        std::uint64_t bytes = before.bytes_in_use;
        for (const Block& block : live)
            bytes += size_of_class(size_class_of(block.size));
        ASSERT_EQ(allocatorStatistics().bytes_in_use, bytes);
        ASSERT_EQ(allocatorStatistics().blocks_in_use, before.blocks_in_use + live.size());
        ASSERT_GE(allocatorStatistics().peak_bytes, bytes);
        ASSERT_TRUE(check_allocator());
    }
    while (!live.empty())
        release(take_any().bytes);
    EXPECT_TRUE(faults.empty());
}

/// Blocks that go back when the test ends.
struct Blocks {
    std::vector<std::byte*> all;

    std::byte* take(std::size_t n) {
        all.push_back(static_cast<std::byte*>(allocate(n)));
        return all.back();
    }
    std::byte* take_from_new_chunk(std::size_t n) {
        const std::uint64_t chunks = allocatorStatistics().chunks;
        while (allocatorStatistics().chunks == chunks)
            take(n);
        return all.back();
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

TEST(Pages, AreCommittedInOrderUntilTheRangeIsUsedUp) {
    PageRange range;
    ASSERT_TRUE(reserve_pages(range, 4 * 65536));
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(range.base) % 65536, 0u);
    EXPECT_EQ(commit_pages(range, 65536), range.base);
    EXPECT_EQ(commit_pages(range, 2 * 65536), range.base + 65536);
    std::memset(range.base, 1, range.committed);
    EXPECT_EQ(commit_pages(range, 2 * 65536), nullptr);
    EXPECT_EQ(range.committed, 3u * 65536);
    EXPECT_NE(commit_pages(range, 65536), nullptr);
    EXPECT_EQ(commit_pages(range, 65536), nullptr);
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
    auto* larger = static_cast<std::byte*>(allocate(98304 - 4));
    release(larger);
    const RefusedSystem system;
    const auto take_until_inside = [&](std::size_t n) {
        std::byte* block = blocks.take(n);
        for (int i = 0; i < 10'000 && (block < larger || block >= larger + 98304); ++i)
            block = blocks.take(n);
        return block - larger;
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
    for (const std::size_t n :
         {SIZE_MAX, SIZE_MAX - 3, SIZE_MAX / 2, std::size_t{1} << 40, std::size_t{1} << 30})
        EXPECT_EQ(allocate(n), nullptr);
    EXPECT_EQ(allocateZeroed(SIZE_MAX / 2, 3), nullptr);
    EXPECT_EQ(allocateZeroed(SIZE_MAX / 2 + 1, 2), nullptr);
    EXPECT_EQ(exhausted, 7);
    EXPECT_EQ(faults.size(), 1u);
}

TEST_F(AllocatorTest, FailsTheChosenAllocationAndNoOther) {
    count_exhaustion();
    Blocks blocks;
    char* kept = reinterpret_cast<char*>(blocks.take(10));
    std::memcpy(kept, "survivors", 10);
    fail_allocation(2);
    EXPECT_NE(blocks.take(1000), nullptr);
    EXPECT_EQ(reallocate(kept, 100), nullptr);
    EXPECT_STREQ(kept, "survivors");
    EXPECT_EQ(exhausted, 1);
    EXPECT_NE(blocks.take(10), nullptr);
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
