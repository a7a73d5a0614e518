#pragma once

#include <cstdint>

namespace pellux {

/// Milliseconds since an arbitrary moment; never goes back.
[[nodiscard]] std::int64_t monotonic_ms();
/// Seconds since 1970-01-01, UTC.
[[nodiscard]] std::int64_t wall_seconds();
/// Like `monotonic_ms`, but real also while a manual clock stands: for limits on waiting for
/// another process.
[[nodiscard]] std::int64_t real_monotonic_ms();

/// While one is alive, both clocks stand still and move only by `advance`. For tests; one at a
/// time.
class ManualClock {
public:
    ManualClock();
    ~ManualClock();
    ManualClock(const ManualClock&) = delete;
    ManualClock& operator=(const ManualClock&) = delete;

    void advance(std::int64_t ms);
};

/// True while a `ManualClock` is alive: waiting for real time would then be waiting for ever.
[[nodiscard]] bool clock_is_manual();

} // namespace pellux
