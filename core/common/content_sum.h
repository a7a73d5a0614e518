#pragma once

#include "core/common/containers.h"

#include <cstdint>
#include <string_view>

struct XXH3_state_s;

namespace pellux {

/// Tells contents of files apart, at the speed of memory; nobody's secret depends on it.
struct ContentSum {
    std::uint64_t high = 0;
    std::uint64_t low = 0;

    bool operator==(const ContentSum&) const = default;
};

/// Sums up contents that come in pieces.
class ContentSummer {
public:
    ContentSummer();
    ~ContentSummer();
    ContentSummer(const ContentSummer&) = delete;
    ContentSummer& operator=(const ContentSummer&) = delete;

    void add(std::string_view piece);
    /// Of all pieces so far.
    [[nodiscard]] ContentSum sum() const;

private:
    XXH3_state_s* state_;
};

} // namespace pellux
