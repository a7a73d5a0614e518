#pragma once

namespace pellux {

/// What must hold for every input; else the input is a finding.
inline void require(bool holds) {
    if (!holds)
        __builtin_trap();
}

} // namespace pellux
