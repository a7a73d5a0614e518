#pragma once

#include <cstddef>

#if defined(__SANITIZE_ADDRESS__)
#define PELLUX_POISON 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define PELLUX_POISON 1
#endif
#endif

#if defined(PELLUX_POISON)
#include <sanitizer/asan_interface.h>
#include <sanitizer/lsan_interface.h>
/// On a function that reads or writes the allocator's own words, which always stay poisoned.
#define PELLUX_UNPOISONED_ACCESS __attribute__((no_sanitize("address")))
#else
#define PELLUX_UNPOISONED_ACCESS
#endif

namespace pellux {

// Under the address sanitizer memory that nobody owns is marked, so that a touch is reported; in
// other builds these do nothing.

inline void poison([[maybe_unused]] const void* start, [[maybe_unused]] std::size_t bytes) {
#if defined(PELLUX_POISON)
    __asan_poison_memory_region(start, bytes);
#endif
}

inline void unpoison([[maybe_unused]] const void* start, [[maybe_unused]] std::size_t bytes) {
#if defined(PELLUX_POISON)
    __asan_unpoison_memory_region(start, bytes);
#endif
}

/// Pointers stored in the range keep foreign objects from counting as leaked.
inline void search_for_pointers([[maybe_unused]] const void* start,
                                [[maybe_unused]] std::size_t bytes) {
#if defined(PELLUX_POISON)
    __lsan_register_root_region(start, bytes);
#endif
}

} // namespace pellux
