#pragma once

#include "core/os/files.h"
#include "tools/driver/exit_status.h"
#include "tools/driver/libraries/library_place.h"

#include <cstdint>

namespace pellux {

/// Keeps other runs out of a library until it is destroyed or the program ends in whatever way.
struct LibraryLock {
    File file;
};

/// Asked while the lock is waited for: shall the waiting end?
struct WaitGuard {
    void (*waiting)(void* context, const LibraryPlace& place) = nullptr; ///< told once
    bool (*stop)(void* context) = nullptr;
    void* context = nullptr;
};

/// How long a run waits for another one before it gives up.
inline constexpr std::int64_t k_lock_wait_ms = 5000;

/// Locks the library by the file "lock" in its directory; who holds it is named in the failure.
[[nodiscard]] Failure lock_library(const LibraryPlace& place, LibraryLock& lock,
                                   const WaitGuard& guard, std::int64_t wait_ms = k_lock_wait_ms);

} // namespace pellux
