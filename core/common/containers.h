#pragma once

#include "core/common/allocator.h"

#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace pellux {

/// Standard allocator over the checked one. Memory that cannot be had ends the program, so that no
/// exception starts here.
template <typename T>
struct CheckedAllocator {
    using value_type = T;

    CheckedAllocator() = default;
    template <typename U>
    CheckedAllocator(const CheckedAllocator<U>&) noexcept {} // NOLINT: converts by design

    [[nodiscard]] T* allocate(std::size_t count) {
        static_assert(alignof(T) <= 16);
        if (count > static_cast<std::size_t>(-1) / sizeof(T))
            std::abort();
        void* memory = pellux::allocate(count * sizeof(T));
        if (memory == nullptr)
            std::abort();
        return static_cast<T*>(memory);
    }
    void deallocate(T* p, std::size_t) noexcept { release(p); }

    template <typename U>
    bool operator==(const CheckedAllocator<U>&) const noexcept {
        return true;
    }
};

using String = std::basic_string<char, std::char_traits<char>, CheckedAllocator<char>>;

template <typename T>
using Vector = std::vector<T, CheckedAllocator<T>>;

template <typename Key, typename Value, typename Less = std::less<>>
using Map = std::map<Key, Value, Less, CheckedAllocator<std::pair<const Key, Value>>>;

/// Hash of texts that finds `String` keys by a view.
struct TextHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const {
        return std::hash<std::string_view>{}(text);
    }
};

template <typename Value>
using TextMap = std::unordered_map<String, Value, TextHash, std::equal_to<>,
                                   CheckedAllocator<std::pair<const String, Value>>>;
using TextSet = std::unordered_set<String, TextHash, std::equal_to<>, CheckedAllocator<String>>;

/// Ends an object made by `make_owned`.
template <typename T>
struct OwnedDelete {
    OwnedDelete() = default;
    template <typename U>
    OwnedDelete(const OwnedDelete<U>&) noexcept {} // NOLINT: converts by design

    void operator()(T* object) const {
        if constexpr (std::is_polymorphic_v<T>) {
            // The block starts where the most derived object does.
            void* block = dynamic_cast<void*>(object);
            object->~T();
            release(block);
        } else {
            object->~T();
            release(object);
        }
    }
};

/// The one owner of an object in checked memory.
template <typename T>
using Owned = std::unique_ptr<T, OwnedDelete<T>>;

template <typename T, typename... Arguments>
[[nodiscard]] Owned<T> make_owned(Arguments&&... arguments) {
    static_assert(alignof(T) <= 16);
    void* memory = allocate(sizeof(T));
    if (memory == nullptr)
        std::abort();
    return Owned<T>(::new (memory) T(std::forward<Arguments>(arguments)...));
}

inline std::string_view view(const String& text) {
    return {text.data(), text.size()};
}

} // namespace pellux
