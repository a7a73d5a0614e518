#include "core/common/allocator_state.h"
#include "tests/core/common/allocator_fixture.h"

#include <cstring>

namespace pellux {
namespace {

constexpr AllocatorFault k_bad = AllocatorFault::bad_pointer;
constexpr AllocatorFault k_free = AllocatorFault::already_free;

std::byte* header_of(void* p) {
    return static_cast<std::byte*>(p) - k_header_bytes;
}

struct Misuse : AllocatorTest {
    char* live = static_cast<char*>(allocateZeroed(100, 1));
    char* freed = static_cast<char*>(allocate(100));
    char outside[32] = {};

    Misuse() {
        // Another block on top of the list: the search must go past the head.
        void* other = allocate(100);
        release(freed);
        release(other);
    }
    ~Misuse() override { release(live); }
};

TEST_F(Misuse, OfReleaseIsReported) {
    const AllocatorStatistics use = allocatorStatistics();
    release(nullptr);
    release(outside + 16);
    release(block_at(allocator_state, 0));
    release(freed);
    release(live + 16);
    // What only looks like a header does not lie where one can.
    const std::uint32_t forged = k_magic | 5;
    std::memcpy(live + 1, &forged, sizeof forged);
    EXPECT_FALSE(isValidBlock(live + 5));
    release(live + 5);
    release(allocator_state.base + allocator_state.range.committed);
    const char* bogus = "attempt to free() bogus pointer";
    const char* corrupt = "attempt to free() corrupt pointer";
    EXPECT_EQ(faults, (Faults{{k_bad, bogus},
                              {k_bad, bogus},
                              {k_free, "attempt to free() pointer which is already free"},
                              {k_bad, corrupt},
                              {k_bad, corrupt},
                              {k_bad, corrupt}}));
    EXPECT_EQ(allocatorStatistics().blocks_in_use, use.blocks_in_use);
}

TEST_F(Misuse, OfReallocateIsReportedAndAnswersNull) {
    for (void* wrong :
         {static_cast<void*>(outside), static_cast<void*>(freed), static_cast<void*>(live + 16)})
        EXPECT_EQ(reallocate(wrong, 10), nullptr);
    EXPECT_EQ(faults, (Faults{{k_bad, "attempt to realloc() bogus pointer"},
                              {k_free, "attempt to realloc() an already free pointer"},
                              {k_bad, "attempt to realloc() corrupt pointer"}}));
}

TEST_F(Misuse, IsSeenByIsValidBlock) {
    EXPECT_TRUE(isValidBlock(live));
    for (const void* wrong :
         {static_cast<const void*>(freed), static_cast<const void*>(outside),
          static_cast<const void*>(live + 16), static_cast<const void*>(live + 4),
          static_cast<const void*>(nullptr),
          static_cast<const void*>(allocator_state.base + allocator_state.range.committed)})
        EXPECT_FALSE(isValidBlock(wrong)) << wrong;
    const std::uint32_t header = read_word(header_of(live));
    write_word(header_of(live), k_magic | 128);
    EXPECT_TRUE(isValidBlock(live));
    write_word(header_of(live), k_magic | 129);
    EXPECT_FALSE(isValidBlock(live));
    write_word(header_of(live), header);
}

TEST_F(Misuse, OfAFreeBlockMakesItsListCorrupt) {
    void* top = allocate(100);
    release(top);
    const std::uint32_t link = read_word(header_of(top));
    write_word(header_of(top), 0x7FFFFFFF);
    EXPECT_FALSE(check_allocator());
    EXPECT_EQ(allocate(100), top);
    EXPECT_EQ(allocate(100), nullptr);
    EXPECT_EQ(faults, (Faults{{AllocatorFault::free_list_corrupted,
                               "free list was corrupted somehow ..."}}));
    release(live + 16);
    EXPECT_EQ(faults.back().second, "attempt to free() corrupt pointer");
    allocator_state.free_heads[size_class_of(100)] = link;
    release(top);
}

TEST_F(Misuse, IsFoundByTheCheckOfTheAllocator) {
    const std::uint32_t live_header = read_word(header_of(live));
    const std::uint32_t freed_link = read_word(header_of(freed));
    const auto freed_index = allocator_state.free_heads[size_class_of(100)];
    EXPECT_TRUE(check_allocator());
    for (const std::uint32_t wrong : {0u, live_header + 8, k_magic | 1u, k_magic | 129u}) {
        write_word(header_of(live), wrong);
        EXPECT_FALSE(check_allocator()) << wrong;
        write_word(header_of(live), live_header);
    }
    for (const std::uint32_t wrong : {freed_index, 0x7FFFFFFFu, live_header}) {
        write_word(header_of(freed), wrong);
        EXPECT_FALSE(check_allocator()) << wrong;
        write_word(header_of(freed), freed_link);
    }
    EXPECT_TRUE(check_allocator());
}

TEST_F(Misuse, OfAKeptBlockLeavesItAlone) {
    const std::uint32_t header = read_word(header_of(live));
    write_word(header_of(live), header | k_kept_bit);
    std::memcpy(live, "kept", 5);
    const AllocatorStatistics use = allocatorStatistics();
    release(live);
    EXPECT_EQ(allocatorStatistics().blocks_in_use, use.blocks_in_use);
    EXPECT_STREQ(live, "kept");
    EXPECT_TRUE(isValidBlock(live));
    EXPECT_TRUE(check_allocator());
    write_word(header_of(live), header);
}

TEST_F(Misuse, EndsTheProgramByDefault) {
    setAllocatorFaultHandler(nullptr);
    EXPECT_EXIT(release(outside), testing::ExitedWithCode(255),
                "^Memory allocation:  attempt to free\\(\\) bogus pointer\n");
}

} // namespace
} // namespace pellux
