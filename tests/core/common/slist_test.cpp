#include "core/common/slist.h"

#include "tests/core/common/allocator_fixture.h"

#include <algorithm>
#include <deque>
#include <random>
#include <string>
#include <vector>

namespace pellux {
namespace {

using SListTest = AllocatorTest;
using Values = std::deque<void*>;

char marks[8];

Values values_of(const SList& list) {
    Values values;
    SListCursor cursor = read_from(list);
    while (void* value = next(cursor))
        values.push_back(value);
    EXPECT_EQ(next(cursor), nullptr);
    return values;
}

void step_both(SList& list, Values& model, std::mt19937& random) {
    // Few marks, so that the same value stands in the list more than once.
    void* value = &marks[random() % 6];
    void* other = &marks[random() % 8];
    const auto at = std::find(model.begin(), model.end(), other);
    const bool known = at != model.end();
    switch (random() % 9) {
    case 0:
        ASSERT_EQ(prepend(list, value), 0);
        model.push_front(value);
        break;
    case 1:
        ASSERT_EQ(append(list, value), 0);
        model.push_back(value);
        break;
    case 2:
        ASSERT_EQ(insertAfter(list, value, other), model.empty() || known ? 0 : -1);
        if (known)
            model.insert(at + 1, value);
        break;
    case 3:
        ASSERT_EQ(insertAfter(list, value, nullptr), 0);
        if (!model.empty())
            model.push_front(value);
        break;
    case 4:
        ASSERT_EQ(contains(list, other), known ? 1 : 0);
        break;
    case 5:
        ASSERT_EQ(remove(list, other), known ? 1 : 0);
        if (known)
            model.erase(at);
        break;
    case 6:
        ASSERT_EQ(popFront(list), model.empty() ? nullptr : model.front());
        if (!model.empty())
            model.pop_front();
        break;
    case 7:
        ASSERT_EQ(popBack(list), model.empty() ? nullptr : model.back());
        if (!model.empty())
            model.pop_back();
        break;
    case 8:
        const unsigned long index = random() % 12;
        ASSERT_EQ(nth(list, index), index < model.size() ? model[index] : nullptr);
    }
    ASSERT_EQ(values_of(list), model);
}

TEST_F(SListTest, AgreesWithADequeInARandomisedRun) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    SList list;
    Values model;
    for (int i = 0; i < 30'000 && !HasFatalFailure(); ++i)
        step_both(list, model, random);
    clear(list, 0);
    EXPECT_EQ(list.last, nullptr);
}

TEST_F(SListTest, EditorDeletesAnyChoiceOfNodes) {
    for (unsigned chosen = 0; chosen < 16; ++chosen) {
        SList list;
        Values rest;
        for (unsigned i = 0; i < 4; ++i) {
            append(list, &marks[i]);
            if ((chosen >> i & 1) == 0)
                rest.push_back(&marks[i]);
        }
        SListEditor editor = edit(list);
        remove_current(editor, 0);
        for (unsigned i = 0; i < 4; ++i) {
            ASSERT_EQ(next(editor), &marks[i]) << chosen;
            if ((chosen >> i & 1) != 0)
                remove_current(editor, 0);
        }
        EXPECT_EQ(next(editor), nullptr);
        remove_current(editor, 0);
        EXPECT_EQ(values_of(list), rest) << chosen;
        // What the editor left must still be a circle that ends at its last node.
        append(list, &marks[7]);
        EXPECT_EQ(popBack(list), &marks[7]);
        clear(list, 0);
    }
}

TEST_F(SListTest, FreesValuesOnlyWhenAsked) {
    SList list = make(allocate(10));
    append(list, allocate(10));
    append(list, allocate(10));
    SListEditor editor = edit(list);
    static_cast<void>(next(editor));
    remove_current(editor, 1);
    release(popBack(list));
    clear(list, 1);
}

TEST_F(SListTest, ExhaustionLeavesTheListAsItWas) {
    static std::vector<std::pair<int, std::string>> errors;
    errors.clear();
    const SListErrorHandler previous = setSListErrorHandler(
        [](int code, const char* message) { errors.emplace_back(code, message); });
    count_exhaustion();
    SList list = make(&marks[0]);
    append(list, &marks[1]);
    for (int which = 0; which < 4; ++which) {
        fail_allocation(1);
        EXPECT_EQ(which == 0   ? prepend(list, marks)
                  : which == 1 ? append(list, marks)
                               : insertAfter(list, marks, &marks[which - 2]),
                  -1);
    }
    fail_allocation(1);
    EXPECT_EQ(make(marks).last, nullptr);
    EXPECT_EQ(errors, (decltype(errors)(5, {12, "slist - out of memory"})));
    EXPECT_EQ(values_of(list), (Values{&marks[0], &marks[1]}));
    clear(list, 0);
    setSListErrorHandler(previous);
}

} // namespace
} // namespace pellux
