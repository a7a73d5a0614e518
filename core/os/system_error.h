#pragma once

#include <span>
#include <string_view>

namespace pellux {

/// The operating system's own number for what went wrong; `none` (0) means that nothing did.
enum class SystemError : int { none = 0 };

[[nodiscard]] constexpr bool failed(SystemError error) {
    return error != SystemError::none;
}

/// No such file, or a part of its path is no directory.
[[nodiscard]] bool is_missing(SystemError error);
/// The user has no right to it, or the file system is read-only.
[[nodiscard]] bool is_denied(SystemError error);
/// The disk, the user's share of it or the largest file size is used up.
[[nodiscard]] bool is_out_of_room(SystemError error);
/// There is something of that name already.
[[nodiscard]] bool is_taken(SystemError error);
/// Somebody else holds it just now: another program's lock, a running program, a mount.
[[nodiscard]] bool is_busy(SystemError error);

/// What our own code refuses, told as one of the system's errors.
enum class Refusal {
    bad_path,
    path_too_long,
    link_loop,
    directory,
    not_a_file,
    taken,
    too_large,
    damaged
};
[[nodiscard]] SystemError refuse(Refusal reason);

/// The system's text for `error`, written into `buffer` (cut to fit, NUL-terminated).
std::string_view describe(SystemError error, std::span<char> buffer);

} // namespace pellux
