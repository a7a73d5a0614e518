#include "core/common/allocator_state.h"
#include "tests/core/common/allocator_fixture.h"

#include <cstring>

namespace pellux {
namespace {

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

TEST_F(Misuse, IsReportedAndChangesNothing) {
    // What only looks like a header does not lie where one can.
    const std::uint32_t forged = k_magic | 5;
    std::memcpy(live + 1, &forged, sizeof forged);
    const auto expect_faults = [&](void* p, AllocatorFault fault, std::string freeing,
                                   std::string reallocating) {
        faults.clear();
        EXPECT_FALSE(isValidBlock(p)) << freeing;
        release(p);
        EXPECT_EQ(reallocate(p, 10), nullptr) << freeing;
        EXPECT_EQ(faults, (Faults{{fault, "attempt to free() " + freeing},
                                  {fault, "attempt to realloc() " + reallocating}}));
    };
    const AllocatorStatistics use = allocatorStatistics();
    AllocatorState& state = allocator_state;
    for (void* p : std::vector<void*>{outside + 16, state.base})
        expect_faults(p, AllocatorFault::bad_pointer, "bogus pointer", "bogus pointer");
    for (void* p : std::vector<void*>{live + 16, live + 5, state.base + state.range.committed})
        expect_faults(p, AllocatorFault::bad_pointer, "corrupt pointer", "corrupt pointer");
    expect_faults(freed, AllocatorFault::already_free, "pointer which is already free",
                  "an already free pointer");
    release(nullptr);
    EXPECT_EQ(faults.size(), 2u);
    EXPECT_FALSE(isValidBlock(nullptr));
    EXPECT_TRUE(isValidBlock(live));
    EXPECT_EQ(allocatorStatistics().blocks_in_use, use.blocks_in_use);
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
    const BlockIndex head = allocator_state.free_heads[size_class_of(100)];
    for (const std::uint32_t wrong : {0u, live_header + 8, k_magic | 1u, k_magic | 129u}) {
        write_word(header_of(live), wrong);
        EXPECT_FALSE(check_allocator()) << wrong;
        EXPECT_EQ(isValidBlock(live), wrong != 0 && wrong != (k_magic | 129u)) << wrong;
        write_word(header_of(live), live_header);
    }
    for (const std::uint32_t wrong : {head, 0x7FFFFFFFu, live_header}) {
        write_word(header_of(freed), wrong);
        EXPECT_FALSE(check_allocator()) << wrong;
        write_word(header_of(freed), freed_link);
    }
    EXPECT_TRUE(check_allocator());
    write_word(header_of(live), live_header | k_kept_bit);
    release(live);
    EXPECT_TRUE(isValidBlock(live) && check_allocator());
    write_word(header_of(live), live_header);
}

TEST_F(Misuse, EndsTheProgramByDefault) {
    setAllocatorFaultHandler(nullptr);
    EXPECT_EXIT(release(outside), testing::ExitedWithCode(255),
                "^Memory allocation:  attempt to free\\(\\) bogus pointer\n");
}

} // namespace
} // namespace pellux
