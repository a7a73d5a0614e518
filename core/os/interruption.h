#pragma once

namespace pellux {

/// From now on the user's wish to end the program (an interrupt, a hang-up, a termination) only
/// wakes the loop, which then calls `noticed` (may be null), so that children are ended before the
/// program is.
void notice_interruption(void (*noticed)());
/// The number of the signal by which the wish came; 0 when there is none.
[[nodiscard]] int interruption();

} // namespace pellux
