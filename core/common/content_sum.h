#pragma once

#include "core/os/system_error.h"

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

/// Of all bytes of a regular file; `content` stays as it is on failure.
[[nodiscard]] SystemError sum_file(std::string_view path, ContentSum& content);

} // namespace pellux
