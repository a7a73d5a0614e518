#include "core/common/hash_table.h"

#include "tests/core/common/allocator_fixture.h"

#include <algorithm>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace pellux {
namespace {

struct HashTableTest : AllocatorTest {
    static inline std::vector<std::pair<int, std::string>> errors;
    HashErrorHandler previous = setHashErrorHandler(
        [](int code, const char* message) { errors.emplace_back(code, message); });

    HashTableTest() { errors.clear(); }
    ~HashTableTest() override { setHashErrorHandler(previous); }
};

/// Values that are told apart but never freed.
char values[64];

std::uint32_t by_first_character(const char* key, std::uint32_t size) {
    return static_cast<unsigned char>(key[0]) % size;
}

using Entries = std::vector<std::pair<std::string, void*>>;

Entries entries_of(const HashTable& table) {
    Entries entries;
    HashIterator iterator{.table = &table};
    const char* key = nullptr;
    void* value = nullptr;
    while (next(iterator, key, value) != 0)
        entries.emplace_back(key, value);
    EXPECT_EQ(next(iterator, key, value), 0);
    return entries;
}

/// The hash kept in the only node of a table.
std::uint32_t hash_of(const std::string& key) {
    HashTable table = create(1, 1);
    insert(table, key.c_str(), values);
    const std::uint32_t hash = table.buckets[0]->hash;
    destroy(table, 1);
    return hash;
}

TEST_F(HashTableTest, DefaultHashAddsWeightAndPlaceOfSignedCharacters) {
    std::set<std::uint32_t> distinct;
    for (int code = 1; code < 256; ++code)
        distinct.insert(hash_of(std::string(1, static_cast<char>(code))));
    EXPECT_EQ(distinct.size(), 255u);
    for (std::size_t length = 0; length < 40; ++length) {
        std::string key(length, ' ');
        std::uint32_t sum = 0;
        for (std::size_t i = 0; i < length; ++i) {
            key[i] = static_cast<char>(1 + random() % 255);
            const auto factor = static_cast<std::uint32_t>(static_cast<signed char>(key[i]));
            sum += hash_of(key.substr(i, 1)) + static_cast<std::uint32_t>(i) * factor;
        }
        EXPECT_EQ(hash_of(key), sum) << length;
    }
}

/// The mask of a size that is no power of two leaves buckets unused.
std::uint32_t masked(const char* key, std::uint32_t size) {
    return hash_of(key) & (size - 1);
}

/// Runs a table against a model of its chains; `bucket_of` tells them apart.
void run_against_model(HashTable table, HashFunction bucket_of, std::mt19937& random) {
    std::map<std::uint32_t, Entries> chains;
    for (int i = 0; i < 20'000; ++i) {
        std::string key(random() % 3, 'a');
        for (char& character : key)
            character = static_cast<char>('a' + random() % 6);
        void* value = &values[random() % sizeof values];
        Entries& chain = chains[bucket_of(key.c_str(), table.size)];
        auto entry = std::find_if(chain.begin(), chain.end(),
                                  [&](const auto& each) { return each.first == key; });
        const bool known = entry != chain.end();
        ASSERT_EQ(find(table, key.c_str()), known ? entry->second : nullptr);
        const auto choice = random() % 5;
        if (choice == 0) {
            replace(table, key.c_str(), value);
            if (known)
                entry->second = value;
        } else if (choice < 3) {
            ASSERT_EQ(insert(table, key.c_str(), value), known ? entry->second : nullptr);
            if (!known)
                chain.emplace_back(key, value);
        } else {
            // The only entry of a bucket goes whatever its key is.
            if (chain.size() == 1)
                entry = chain.begin();
            ASSERT_EQ(remove(table, key.c_str()), entry != chain.end() ? 0 : -1);
            if (entry != chain.end())
                chain.erase(entry);
        }
        if (i % 100 != 0)
            continue;
        Entries expected;
        for (const auto& [bucket, each] : chains)
            expected.insert(expected.end(), each.begin(), each.end());
        ASSERT_EQ(entries_of(table), expected);
    }
    destroy(table, 0);
}

TEST_F(HashTableTest, AgreesWithAModelOfItsChainsInRandomisedRuns) {
    for (const std::uint32_t size : {1u, 8u, 371u, 512u})
        run_against_model(create(size, 1), masked, random);
    HashTable table = create(7, by_first_character);
    EXPECT_EQ(table.valuesBorrowed, 0);
    table.valuesBorrowed = 1;
    run_against_model(table, by_first_character, random);
}

TEST_F(HashTableTest, OwnedValuesGoWithTheirEntries) {
    // The fixture finds values that stay; those that go twice are faults.
    HashTable table = create(2, 0);
    void* kept = allocate(10);
    void* newer = allocate(10);
    insert(table, "a", allocate(10));
    insert(table, "b", kept);
    replace(table, "a", newer);
    EXPECT_EQ(find(table, "a"), newer);
    remove(table, "a");
    destroy(table, 1);
    EXPECT_TRUE(isValidBlock(kept));
    table = create(2, 0);
    insert(table, "b", kept);
    destroy(table, 0);
    EXPECT_TRUE(faults.empty());
}

TEST_F(HashTableTest, MisuseGoesToTheHandler) {
    HashTable table = create(1, 1);
    EXPECT_EQ(insert(table, nullptr, values), nullptr);
    replace(table, nullptr, values);
    EXPECT_EQ(remove(table, nullptr), -1);
    replace(table, "absent", values);
    insert(table, "present", values);
    replace(table, "absent", &values[1]);
    EXPECT_EQ(errors, (std::vector<std::pair<int, std::string>>{
                          {0, "ghsearch - insert called with null pointer"},
                          {0, "ghsearch - replace called with null pointer"},
                          {0, "ghsearch - remove called with null pointer"},
                          {0, "ghsearch - key does not exist"}}));
    EXPECT_EQ(entries_of(table), (Entries{{"present", values}}));
    destroy(table, 0);
}

TEST_F(HashTableTest, ExhaustionLeavesTheTableAsItWas) {
    count_exhaustion();
    HashTable table = create(1, 1);
    insert(table, "first", values);
    fail_allocation(1);
    EXPECT_EQ(insert(table, "second", values), nullptr);
    EXPECT_EQ(entries_of(table), (Entries{{"first", values}}));
    destroy(table, 0);
    fail_allocation(1);
    table = create(8, 1);
    EXPECT_EQ(errors.size(), 2u);
    EXPECT_EQ(insert(table, "key", values), nullptr);
    EXPECT_EQ(errors, (decltype(errors)(3, {12, "ghsearch - not enough memory"})));
    EXPECT_EQ(find(table, "key"), nullptr);
    EXPECT_EQ(remove(table, "key"), -1);
    replace(table, "key", values);
    EXPECT_TRUE(entries_of(table).empty());
    destroy(table, 0);
}

TEST_F(HashTableTest, DumpsChainsAndTheirLengths) {
    HashTable table = create(300, by_first_character);
    table.valuesBorrowed = 1;
    for (const char* key : {"apple", "bee", "ant"})
        insert(table, key, values);
    std::string expected = "  97 - apple ant \n  98 - bee \n 122 - ";
    // A chain of 22 is too long to be counted.
    for (const char last : std::string_view("abcdefghijklmnopqrstuv")) {
        insert(table, (std::string("z") + last).c_str(), values);
        expected += std::string("z") + last + " ";
    }
    expected += "\n   0  297\n   1    1\n   2    1\n";
    for (int length = 3; length < 22; ++length)
        expected += (length < 10 ? "   " : "  ") + std::to_string(length) + "    0\n";
    std::string text;
    dump(table, sink_to(text));
    EXPECT_EQ(text, expected);
    destroy(table, 0);
}

} // namespace
} // namespace pellux
