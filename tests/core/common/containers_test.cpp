#include "core/common/containers.h"

#include "core/common/callback.h"
#include "tests/core/common/allocator_fixture.h"

namespace pellux {
namespace {

using ContainersTest = AllocatorTest;

TEST_F(ContainersTest, LiveInCheckedMemory) {
    Vector<String> lines(3, String(100, 'x'));
    EXPECT_TRUE(isValidBlock(lines.data()));
    EXPECT_TRUE(isValidBlock(lines[2].data()));
    EXPECT_EQ(allocatorStatistics().blocks_in_use, before.blocks_in_use + 4);
}

TEST_F(ContainersTest, FindTextsByView) {
    TextMap<int> numbers;
    TextSet names;
    Map<String, int> sorted;
    for (int i = 0; i < 100; ++i) {
        const String name(std::to_string(i));
        numbers[name] = i;
        names.insert(name);
        sorted[name] = i;
    }
    const std::string_view wanted = std::string_view("a42b").substr(1, 2);
    EXPECT_EQ(numbers.find(wanted)->second, 42);
    EXPECT_TRUE(names.contains(wanted));
    EXPECT_EQ(sorted.find(wanted)->second, 42);
    EXPECT_FALSE(names.contains(std::string_view("a42b")));
}

struct Left {
    int number = 1;
    virtual ~Left() = default;
};
struct Right {
    int* ended = nullptr;
    virtual ~Right() = default;
};
struct Both : Left, Right {
    explicit Both(int* counter) { ended = counter; }
    ~Both() override { ++*ended; }
};

TEST_F(ContainersTest, OwnedEndsTheWholeObjectThroughAnyBase) {
    int ended = 0;
    {
        Owned<Right> right = make_owned<Both>(&ended);
        const Owned<Left> left = make_owned<Both>(&ended);
        EXPECT_FALSE(isValidBlock(right.get()));
        EXPECT_EQ(&from_context<Left>(left.get()), left.get());
    }
    EXPECT_EQ(ended, 2);
    EXPECT_TRUE(faults.empty());
}

} // namespace
} // namespace pellux
