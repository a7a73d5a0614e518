#include "core/common/hash_table.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cstdio>
#include <cstring>
#include <new>
#include <utility>

namespace pellux {

namespace {

constexpr int k_no_memory = 12;
constexpr int k_misuse = 0;
constexpr const char* k_no_memory_text = "ghsearch - not enough memory";

void print_error(int, const char* message) {
    std::fprintf(stderr, "%s\n", message);
}

constinit HashErrorHandler error_handler = print_error;

/// Character codes are signed: the first constant is that of -128.
constexpr int k_code_offset = 128;

/// One constant for each character code, from a counter mixed twice; NUL weighs nothing.
constexpr auto k_character_weights = [] {
    std::array<std::uint32_t, 256> weights{};
    std::uint32_t counter = 0;
    for (std::uint32_t& weight : weights) {
        counter += 0x9E3779B9;
        std::uint32_t mixed = counter;
        mixed = (mixed ^ (mixed >> 16)) * 0x21F0AAAD;
        mixed = (mixed ^ (mixed >> 15)) * 0x735A2D97;
        weight = mixed ^ (mixed >> 15);
    }
    weights[k_code_offset] = 0;
    return weights;
}();

/// A key with all that tells it from another.
struct Key {
    const char* text = nullptr;
    std::uint32_t length = 0;
    std::uint32_t hash = 0; ///< as in the node
    std::uint32_t bucket = 0;
};

/// What the character at `i` adds to the sum.
inline std::uint32_t weigh(const char* text, std::uint32_t i) {
    const int character = static_cast<signed char>(text[i]);
    return k_character_weights[static_cast<unsigned>(character + k_code_offset)] +
           i * static_cast<std::uint32_t>(character);
}

template <std::uint32_t... Each>
inline std::uint32_t weigh_whole(const char* text, std::uint32_t start,
                                 std::integer_sequence<std::uint32_t, Each...>) {
    return (weigh(text, start + Each) + ...);
}

/// Places past the length read the final NUL, which weighs nothing.
template <std::uint32_t... Each>
inline std::uint32_t weigh_end(const char* text, std::uint32_t start, std::uint32_t length,
                               std::integer_sequence<std::uint32_t, Each...>) {
    return (weigh(text, std::min(start + Each, length)) + ...);
}

inline Key default_key(const char* text, std::uint32_t size) {
    // The sum does not depend on the order. A branch per character would be guessed wrong once in
    // every key, so groups of eight are quicker although the last one is mostly padding.
    const auto length = static_cast<std::uint32_t>(std::strlen(text));
    std::uint32_t sum = 0;
    std::uint32_t start = 0;
    for (; start + 8 <= length; start += 8)
        sum += weigh_whole(text, start, std::make_integer_sequence<std::uint32_t, 8>{});
    sum += weigh_end(text, start, length, std::make_integer_sequence<std::uint32_t, 7>{});
    return {.text = text, .length = length, .hash = sum, .bucket = sum & (size - 1)};
}

inline Key make_key(const HashTable& table, const char* text) {
    if (table.hash == nullptr)
        return default_key(text, table.size);
    const std::uint32_t bucket = table.hash(text, table.size);
    assert(bucket < table.size);
    return {.text = text,
            .length = static_cast<std::uint32_t>(std::strlen(text)),
            .hash = 0,
            .bucket = bucket};
}

inline bool matches(const HashNode& node, const Key& key) {
    return node.hash == key.hash && node.key_length == key.length &&
           std::memcmp(node.key(), key.text, key.length) == 0;
}

HashNode* find_in_chain(HashNode* node, const Key& key) {
    while (node != nullptr && !matches(*node, key))
        node = node->next;
    return node;
}

HashNode* make_node(const Key& key, void* value) {
    void* memory = allocate(sizeof(HashNode) + key.length + 1);
    if (memory == nullptr)
        return nullptr;
    auto* node =
        ::new (memory) HashNode{.value = value, .hash = key.hash, .key_length = key.length};
    std::memcpy(node + 1, key.text, key.length + 1);
    return node;
}

HashTable make_table(std::uint32_t size, HashFunction hash, int values_borrowed) {
    HashTable table{.size = size, .hash = hash, .valuesBorrowed = values_borrowed};
    if (size == 0)
        return table;
    table.buckets = static_cast<HashNode**>(allocateZeroed(size, sizeof(HashNode*)));
    if (table.buckets == nullptr)
        error_handler(k_no_memory, k_no_memory_text);
    return table;
}

} // namespace

HashErrorHandler setHashErrorHandler(HashErrorHandler handler) {
    return std::exchange(error_handler, handler != nullptr ? handler : print_error);
}

HashTable create(std::uint32_t size, HashFunction hash) {
    return make_table(size, hash, 0);
}

HashTable create(std::uint32_t size, int values_borrowed) {
    return make_table(size, nullptr, values_borrowed);
}

void* insert(HashTable& table, const char* text, void* value) {
    if (text == nullptr) {
        error_handler(k_misuse, "ghsearch - insert called with null pointer");
        return nullptr;
    }
    if (table.buckets == nullptr) {
        error_handler(k_no_memory, k_no_memory_text);
        return nullptr;
    }
    const Key key = make_key(table, text);
    HashNode** link = &table.buckets[key.bucket];
    for (; *link != nullptr; link = &(*link)->next) {
        if (matches(**link, key))
            return (*link)->value;
    }
    *link = make_node(key, value);
    if (*link == nullptr)
        error_handler(k_no_memory, k_no_memory_text);
    return nullptr;
}

void* find(const HashTable& table, const char* text) {
    if (text == nullptr || table.buckets == nullptr)
        return nullptr;
    const Key key = make_key(table, text);
    const HashNode* node = find_in_chain(table.buckets[key.bucket], key);
    return node != nullptr ? node->value : nullptr;
}

void replace(HashTable& table, const char* text, void* value) {
    if (text == nullptr) {
        error_handler(k_misuse, "ghsearch - replace called with null pointer");
        return;
    }
    const Key key = table.buckets != nullptr ? make_key(table, text) : Key{};
    if (table.buckets == nullptr || table.buckets[key.bucket] == nullptr) {
        error_handler(k_misuse, "ghsearch - key does not exist");
        return;
    }
    HashNode* node = find_in_chain(table.buckets[key.bucket], key);
    if (node == nullptr)
        return;
    if (table.valuesBorrowed == 0)
        release(node->value);
    node->value = value;
}

int remove(HashTable& table, const char* text) {
    if (text == nullptr) {
        error_handler(k_misuse, "ghsearch - remove called with null pointer");
        return -1;
    }
    if (table.buckets == nullptr)
        return -1;
    const Key key = make_key(table, text);
    HashNode** link = &table.buckets[key.bucket];
    const bool is_alone = *link != nullptr && (*link)->next == nullptr;
    while (*link != nullptr && !is_alone && !matches(**link, key))
        link = &(*link)->next;
    HashNode* node = *link;
    if (node == nullptr)
        return -1;
    *link = node->next;
    if (table.valuesBorrowed == 0)
        release(node->value);
    release(node);
    return 0;
}

void destroy(HashTable& table, int keep_values) {
    const bool frees_values = keep_values == 0 && table.valuesBorrowed == 0;
    for (std::uint32_t i = 0; table.buckets != nullptr && i < table.size; ++i) {
        for (HashNode* node = table.buckets[i]; node != nullptr;) {
            HashNode* following = node->next;
            if (frees_values)
                release(node->value);
            release(node);
            node = following;
        }
    }
    release(table.buckets);
    table.buckets = nullptr;
}

int next(HashIterator& iterator, const char*& key, void*& value) {
    const HashTable& table = *iterator.table;
    if (iterator.node != nullptr)
        iterator.node = iterator.node->next;
    while (iterator.node == nullptr) {
        if (table.buckets == nullptr || iterator.bucket + 1 >= std::int64_t{table.size})
            return 0;
        iterator.node = table.buckets[++iterator.bucket];
    }
    key = iterator.node->key();
    value = iterator.node->value;
    return 1;
}

void dump(const HashTable& table, TextSink stream) {
    std::array<int, 22> chains_by_length{};
    std::array<char, 40> text;
    const auto print = [&](const char* format, auto... values) {
        const int length = std::snprintf(text.data(), text.size(), format, values...);
        stream.write(stream.context, {text.data(), static_cast<std::size_t>(length)});
    };
    for (std::uint32_t i = 0; table.buckets != nullptr && i < table.size; ++i) {
        std::size_t length = 0;
        if (table.buckets[i] != nullptr)
            print("%4d - ", static_cast<int>(i));
        for (const HashNode* node = table.buckets[i]; node != nullptr; node = node->next) {
            stream.write(stream.context, {node->key(), node->key_length});
            stream.write(stream.context, " ");
            ++length;
        }
        if (length != 0)
            stream.write(stream.context, "\n");
        if (length < chains_by_length.size())
            ++chains_by_length[length];
    }
    for (std::size_t length = 0; length < chains_by_length.size(); ++length)
        print("%4d %4d\n", static_cast<int>(length), chains_by_length[length]);
}

} // namespace pellux
