#pragma once

#include "windows/toolkit/event.h"

namespace pellux {

/// While the program changes a control, nobody is told.
class OwnChange {
public:
    OwnChange() { ++count_; }
    ~OwnChange() { --count_; }
    OwnChange(const OwnChange&) = delete;
    OwnChange& operator=(const OwnChange&) = delete;

    [[nodiscard]] static bool is_under_way() { return count_ > 0; }

private:
    static inline constinit int count_ = 0;
};

/// Tells the parent what the user did with a control.
void tell_parent(Window control, ControlAction action);

} // namespace pellux
