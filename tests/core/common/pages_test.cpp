#include "core/os/pages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>

namespace pellux {
namespace {

TEST(Pages, AreCommittedInOrderUntilTheRangeIsUsedUp) {
    PageRange range;
    ASSERT_TRUE(reserve_pages(range, 4 * 65536));
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(range.base) % 65536, 0u);
    std::byte* first = commit_pages(range, 65536);
    ASSERT_EQ(first, range.base);
    EXPECT_EQ(commit_pages(range, 2 * 65536), first + 65536);
    EXPECT_TRUE(std::all_of(first, first + range.committed,
                            [](std::byte value) { return value == std::byte{0}; }));
    std::fill(first, first + range.committed, std::byte{1});
    EXPECT_EQ(commit_pages(range, 2 * 65536), nullptr);
    EXPECT_EQ(range.committed, 3u * 65536);
    EXPECT_NE(commit_pages(range, 65536), nullptr);
    EXPECT_EQ(commit_pages(range, 65536), nullptr);
}

TEST(Pages, RefuseImpossibleRanges) {
    PageRange range;
    for (const std::size_t bytes :
         {std::size_t{0}, std::size_t{4096}, SIZE_MAX - 65535, std::size_t{1} << 62})
        EXPECT_FALSE(reserve_pages(range, bytes)) << bytes;
    EXPECT_EQ(range.base, nullptr);
}

} // namespace
} // namespace pellux
