#pragma once

namespace pellux {

inline constexpr int k_status_done = 0;
/// A wrong command line, or a file that cannot be read, understood or written.
inline constexpr int k_status_unusable = 2;
/// And the number of the signal that asked the program to end while the compiler ran.
inline constexpr int k_status_interrupted = 128;

} // namespace pellux
