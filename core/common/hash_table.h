#pragma once

#include "core/common/allocator.h"

#include <cstdint>

namespace pellux {

/// Entry of a chain; its key's characters and NUL follow it in the same block.
struct HashNode {
    HashNode* next = nullptr;
    void* value = nullptr;
    std::uint32_t hash = 0; ///< the default function's sum before the mask; 0 with another function
    std::uint32_t key_length = 0;

    [[nodiscard]] const char* key() const { return reinterpret_cast<const char*>(this + 1); }
};

/// Bucket of a key; must be below `size`.
using HashFunction = std::uint32_t (*)(const char* key, std::uint32_t size);

/// Chained hash table keyed by NUL-terminated strings; one pointer per key.
///
/// `size` buckets for life, new entries at the end of their chain. The default hash masks with
/// `size` - 1 whatever `size` is. Faults go to the hash error handler. Single-threaded.
struct HashTable {
    HashNode** buckets = nullptr; ///< null when they could not be had or `size` is 0
    std::uint32_t size = 0;
    HashFunction hash = nullptr; ///< null: the default
    int valuesBorrowed = 0;      ///< 0: values are blocks of the checked allocator, owned
};

struct HashIterator {
    const HashTable* table = nullptr;
    std::int64_t bucket = -1;
    const HashNode* node = nullptr;
};

/// Codes: 12 memory exhausted, 0 misuse.
using HashErrorHandler = void (*)(int code, const char* message);
/// Returns the previous one; null puts back the default, which writes the message to standard
/// error.
HashErrorHandler setHashErrorHandler(HashErrorHandler handler);

[[nodiscard]] HashTable create(std::uint32_t size, HashFunction hash);
[[nodiscard]] HashTable create(std::uint32_t size, int values_borrowed);
/// The existing value, the table unchanged, or null after adding the entry.
void* insert(HashTable& table, const char* key, void* value);
[[nodiscard]] void* find(const HashTable& table, const char* key);
void replace(HashTable& table, const char* key, void* value);
/// 0 when an entry was removed, else -1. A bucket of one entry loses it whatever its key is.
int remove(HashTable& table, const char* key);
/// Frees nodes and buckets, and each value unless `keep_values`.
void destroy(HashTable& table, int keep_values);
/// 1 and the next entry, or 0 at the end.
int next(HashIterator& iterator, const char*& key, void*& value);
void dump(const HashTable& table, TextSink stream);

} // namespace pellux
