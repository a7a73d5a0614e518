#include "core/os/clock.h"

#include <cassert>
#include <chrono>
#include <ctime>

namespace pellux {
namespace {

struct ManualTime {
    bool active = false;
    std::int64_t monotonic_ms = 0;
    std::int64_t wall_ms = 0;
};

ManualTime manual;

template <typename Unit, typename Clock>
std::int64_t since_start() {
    return std::chrono::duration_cast<Unit>(Clock::now().time_since_epoch()).count();
}

} // namespace

std::int64_t real_monotonic_ms() {
    return since_start<std::chrono::milliseconds, std::chrono::steady_clock>();
}

std::int64_t monotonic_ms() {
    return manual.active ? manual.monotonic_ms : real_monotonic_ms();
}

std::int64_t wall_seconds() {
    return manual.active ? manual.wall_ms / 1000
                         : since_start<std::chrono::seconds, std::chrono::system_clock>();
}

const char* local_time_text(std::int64_t seconds, TimeText& text) {
    const auto time = static_cast<std::time_t>(seconds);
    const std::tm* const local = std::localtime(&time);
    if (local == nullptr ||
        std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", local) == 0)
        text[0] = '\0';
    return text.data();
}

ManualClock::ManualClock() {
    assert(!manual.active);
    manual = {true, real_monotonic_ms(),
              since_start<std::chrono::milliseconds, std::chrono::system_clock>()};
}

ManualClock::~ManualClock() {
    manual.active = false;
}

void ManualClock::advance(std::int64_t ms) {
    assert(ms >= 0);
    manual.monotonic_ms += ms;
    manual.wall_ms += ms;
}

bool clock_is_manual() {
    return manual.active;
}

} // namespace pellux
