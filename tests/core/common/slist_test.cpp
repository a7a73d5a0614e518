#include "core/common/slist.h"

#include "tests/core/common/allocator_fixture.h"

#include <algorithm>
#include <deque>
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

void edit_both(SList& list, Values& model, std::mt19937& random) {
    SListEditor editor = edit(list);
    remove_current(editor, 0);
    for (auto at = model.begin(); at != model.end();) {
        ASSERT_EQ(next(editor), *at);
        const bool goes = random() % 3 == 0;
        if (goes)
            remove_current(editor, 0);
        at = goes ? model.erase(at) : at + 1;
    }
    ASSERT_EQ(next(editor), nullptr);
    remove_current(editor, 0);
}

void step_both(SList& list, Values& model, std::mt19937& random) {
    // Few marks, so that the same value stands in the list more than once.
    void* value = &marks[random() % 6];
    void* other = random() % 9 != 0 ? &marks[random() % 8] : nullptr;
    const auto at = std::find(model.begin(), model.end(), other);
    const bool known = at != model.end();
    const unsigned long index = random() % 12;
    ASSERT_EQ(nth(list, index), index < model.size() ? model[index] : nullptr);
    ASSERT_EQ(contains(list, other), known ? 1 : 0);
    const auto choice = random() % 16;
    if (choice < 3) {
        ASSERT_EQ(prepend(list, value), 0);
        model.push_front(value);
    } else if (choice < 6) {
        ASSERT_EQ(append(list, value), 0);
        model.push_back(value);
    } else if (choice < 8) {
        const bool found = model.empty() || known || other == nullptr;
        ASSERT_EQ(insertAfter(list, value, other), found ? 0 : -1);
        if (!model.empty() && found)
            model.insert(known ? at + 1 : model.begin(), value);
    } else if (choice < 10) {
        ASSERT_EQ(remove(list, other), known ? 1 : 0);
        if (known)
            model.erase(at);
    } else if (choice == 10) {
        edit_both(list, model, random);
    } else if (model.empty()) {
        ASSERT_EQ(choice % 2 == 0 ? popFront(list) : popBack(list), nullptr);
    } else if (choice % 2 == 0) {
        ASSERT_EQ(popFront(list), model.front());
        model.pop_front();
    } else {
        ASSERT_EQ(popBack(list), model.back());
        model.pop_back();
    }
    ASSERT_EQ(values_of(list), model);
}

TEST_F(SListTest, AgreesWithADequeInARandomisedRun) {
    SList list;
    Values model;
    for (int i = 0; i < 30'000 && !HasFatalFailure(); ++i)
        step_both(list, model, random);
    clear(list, 0);
    EXPECT_EQ(list.last, nullptr);
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
