#pragma once

#include "core/common/allocator.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <utility>
#include <vector>

namespace pellux {

/// Records faults and exhaustion instead of ending the program, and wants every block back.
struct AllocatorTest : testing::Test {
    using Faults = std::vector<std::pair<AllocatorFault, std::string>>;

    static inline Faults faults;
    static inline int exhausted = 0;

    AllocatorStatistics before = allocatorStatistics();
    unsigned seed = std::random_device{}();
    std::mt19937 random{seed};

    AllocatorTest() {
        faults.clear();
        exhausted = 0;
        setAllocatorFaultHandler(
            [](AllocatorFault fault, const char* text) { faults.emplace_back(fault, text); });
    }
    ~AllocatorTest() override {
        fail_allocation(0);
        setAllocatorFaultHandler(nullptr);
        setOutOfMemoryHandler(nullptr);
        EXPECT_EQ(allocatorStatistics().blocks_in_use, before.blocks_in_use);
        EXPECT_EQ(allocatorStatistics().bytes_in_use, before.bytes_in_use);
        EXPECT_TRUE(check_allocator());
        EXPECT_FALSE(HasFailure()) << "seed " << seed;
    }
    static void count_exhaustion() {
        setOutOfMemoryHandler([] { ++exhausted; });
    }
};

/// Sink that appends to a text.
template <typename Text>
TextSink sink_to(Text& text) {
    return {.write = [](void* context,
                        std::string_view part) { static_cast<Text*>(context)->append(part); },
            .context = &text};
}

} // namespace pellux
