#pragma once

namespace pellux {

/// From now on the user's wish to end the program (an interrupt, a hang-up, a termination) only
/// wakes the loop, so that GHDL is ended before the program is.
void notice_interruption();
[[nodiscard]] bool interrupted();

} // namespace pellux
