#pragma once

#include <array>
#include <cstdint>

namespace pellux {

/// Milliseconds since an arbitrary moment; never goes back.
[[nodiscard]] std::int64_t monotonic_ms();
/// Seconds since 1970-01-01, UTC.
[[nodiscard]] std::int64_t wall_seconds();
/// Like `monotonic_ms`, but real also while a manual clock stands: for limits on waiting for
/// another process.
[[nodiscard]] std::int64_t real_monotonic_ms();

using TimeText = std::array<char, 24>;
/// Puts such a second as "2026-05-04 13:02:45", in the user's time zone, into `text`, and answers
/// it; empty when the system knows no such year.
[[nodiscard]] const char* local_time_text(std::int64_t seconds, TimeText& text);

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
