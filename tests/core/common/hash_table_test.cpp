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

std::set<std::uint32_t> used_buckets(const HashTable& table) {
    std::set<std::uint32_t> used;
    for (std::uint32_t i = 0; i < table.size; ++i) {
        if (table.buckets[i] != nullptr)
            used.insert(i);
    }
    return used;
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
    std::mt19937 random(1);
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

TEST_F(HashTableTest, MaskLeavesMostOf371BucketsUnused) {
    HashTable table = create(371, 1);
    for (int i = 0; i < 2000; ++i)
        insert(table, std::to_string(i).append("_message").c_str(), values);
    const std::set<std::uint32_t> used = used_buckets(table);
    EXPECT_EQ(used.size(), 32u);
    EXPECT_TRUE(std::all_of(used.begin(), used.end(),
                            [](std::uint32_t bucket) { return (bucket & ~370u) == 0; }));
    destroy(table, 0);
}

/// What the table must hold, chain by chain.
struct HashModel {
    std::uint32_t size;
    HashFunction bucket_of; ///< null: the table's own hash, and one chain stands for all
    std::map<std::uint32_t, Entries> chains;

    Entries& chain(const std::string& key) {
        return chains[bucket_of != nullptr ? bucket_of(key.c_str(), size) : 0];
    }
    static Entries::iterator search(Entries& chain, const std::string& key) {
        return std::find_if(chain.begin(), chain.end(),
                            [&](const auto& entry) { return entry.first == key; });
    }
    [[nodiscard]] Entries all() const {
        Entries entries;
        for (const auto& [bucket, chain] : chains)
            entries.insert(entries.end(), chain.begin(), chain.end());
        return entries;
    }
};

void run_against_model(HashTable table, HashModel model, unsigned seed) {
    std::mt19937 random(seed);
    for (int i = 0; i < 20'000; ++i) {
        std::string key(random() % 3, 'a');
        for (char& character : key)
            character = static_cast<char>('a' + random() % 12);
        void* value = &values[random() % sizeof values];
        Entries& chain = model.chain(key);
        auto entry = HashModel::search(chain, key);
        const bool known = entry != chain.end();
        ASSERT_EQ(find(table, key.c_str()), known ? entry->second : nullptr);
        switch (random() % 4) {
        case 0:
            replace(table, key.c_str(), value);
            if (known)
                entry->second = value;
            break;
        case 1:
            if (!known && model.bucket_of == nullptr)
                break;
            if (!known && chain.size() == 1)
                entry = chain.begin();
            ASSERT_EQ(remove(table, key.c_str()), entry != chain.end() ? 0 : -1);
            if (entry != chain.end())
                chain.erase(entry);
            break;
        default:
            ASSERT_EQ(insert(table, key.c_str(), value), known ? entry->second : nullptr);
            if (!known)
                chain.emplace_back(key, value);
        }
        if (i % 100 == 0) {
            Entries expected = model.all();
            Entries found = entries_of(table);
            if (model.bucket_of == nullptr) {
                std::sort(expected.begin(), expected.end());
                std::sort(found.begin(), found.end());
            }
            ASSERT_EQ(found, expected);
        }
    }
    destroy(table, 0);
}

TEST_F(HashTableTest, AgreesWithAModelInRandomisedRuns) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(seed);
    for (const std::uint32_t size : {1u, 8u, 371u, 512u})
        run_against_model(create(size, 1), {size, nullptr, {}}, seed);
    HashTable table = create(7, by_first_character);
    EXPECT_EQ(table.valuesBorrowed, 0);
    table.valuesBorrowed = 1;
    run_against_model(table, {7, by_first_character, {}}, seed);
}

TEST_F(HashTableTest, RemovesTheOnlyEntryOfABucketWhateverItsKey) {
    HashTable table = create(1, 1);
    insert(table, "stays", values);
    EXPECT_EQ(remove(table, "absent"), 0);
    EXPECT_EQ(find(table, "stays"), nullptr);
    EXPECT_EQ(remove(table, "absent"), -1);
    insert(table, "one", values);
    insert(table, "two", values);
    EXPECT_EQ(remove(table, "absent"), -1);
    EXPECT_EQ(remove(table, "one"), 0);
    EXPECT_EQ(find(table, "two"), values);
    destroy(table, 0);
    EXPECT_TRUE(errors.empty());
}

TEST_F(HashTableTest, OwnedValuesGoWithTheirEntries) {
    HashTable table = create(2, 0);
    const auto in_use = [] { return allocatorStatistics().blocks_in_use; };
    void* kept = allocate(10);
    EXPECT_EQ(insert(table, "a", allocate(10)), nullptr);
    EXPECT_EQ(insert(table, "b", kept), nullptr);
    const std::uint64_t blocks = in_use();
    void* newer = allocate(10);
    replace(table, "a", newer);
    EXPECT_EQ(in_use(), blocks);
    EXPECT_EQ(find(table, "a"), newer);
    remove(table, "a");
    EXPECT_EQ(in_use(), blocks - 2);
    destroy(table, 1);
    EXPECT_TRUE(isValidBlock(kept));

    table = create(2, 0);
    insert(table, "b", kept);
    destroy(table, 0);
    EXPECT_FALSE(isValidBlock(kept));
    // The fixture finds values that a borrowing table freed, or an owning one left.
    table = create(2, 1);
    void* borrowed = allocate(10);
    insert(table, "c", borrowed);
    replace(table, "c", borrowed);
    remove(table, "c");
    insert(table, "c", borrowed);
    destroy(table, 0);
    release(borrowed);
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
    const std::pair<int, std::string> no_memory{12, "ghsearch - not enough memory"};
    HashTable table = create(1, 1);
    insert(table, "first", values);
    fail_allocation(1);
    EXPECT_EQ(insert(table, "second", values), nullptr);
    EXPECT_EQ(errors, (decltype(errors){no_memory}));
    EXPECT_EQ(entries_of(table), (Entries{{"first", values}}));
    destroy(table, 0);

    fail_allocation(1);
    table = create(8, 1);
    EXPECT_EQ(errors.size(), 2u);
    EXPECT_EQ(table.buckets, nullptr);
    EXPECT_EQ(insert(table, "key", values), nullptr);
    EXPECT_EQ(errors, (decltype(errors)(3, no_memory)));
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
    // 22 keys in one chain are too many to be counted.
    std::string long_chain = " 122 - ";
    for (int i = 0; i < 22; ++i) {
        const std::string key = std::string("z").append(std::to_string(i));
        insert(table, key.c_str(), values);
        long_chain += key + " ";
    }
    std::string expected = "  97 - apple ant \n  98 - bee \n" + long_chain + "\n" +
                           "   0  297\n   1    1\n   2    1\n";
    for (int length = 3; length < 22; ++length)
        expected += (length < 10 ? "   " : "  ") + std::to_string(length) + "    0\n";
    std::string text;
    dump(table, sink_to(text));
    EXPECT_EQ(text, expected);
    destroy(table, 0);
}

} // namespace
} // namespace pellux
