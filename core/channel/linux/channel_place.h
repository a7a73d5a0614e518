#pragma once

#include "core/channel/channel_frames.h"
#include "core/os/handle.h"
#include "core/os/system_error.h"

#include <array>
#include <cstdint>
#include <string_view>

#include <sys/un.h>

namespace pellux {

inline constexpr std::string_view k_socket_name = "DDE_brixmsg_"; ///< before an address
inline constexpr std::size_t k_place_capacity = sizeof(sockaddr_un::sun_path);

/// The path of the socket of one address, NUL-terminated.
///
/// In `pellux` of the user's run-time directory; where there is none, or the path would be longer
/// than a socket's may be, in `/tmp/pellux-<user id>`. Both ends come to the same path.
using ChannelPlace = std::array<char, k_place_capacity>;
[[nodiscard]] ChannelPlace channel_place(ChannelAddress address);

/// Is the directory of `place` a directory, no link, this user's, and closed to all others? With
/// `create` it is made when it is missing.
[[nodiscard]] SystemError check_channel_directory(const ChannelPlace& place, bool create);

[[nodiscard]] sockaddr_un socket_address(const ChannelPlace& place);

/// Is the other end of a connected socket a process of this user's? `process` is its id.
[[nodiscard]] bool peer_is_ours(SystemHandle socket, std::int64_t& process);

} // namespace pellux
