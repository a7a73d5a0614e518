#include "core/channel/linux/channel_place.h"

#include "core/os/environment.h"
#include "core/os/linux/system_call.h"
#include "core/os/path.h"

#include <algorithm>
#include <charconv>
#include <string_view>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace pellux {
namespace {

constexpr mode_t k_directory_mode = 0700;

bool append_number(PathBuffer& path, std::uint64_t number) {
    std::array<char, 24> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    return path.append({digits.data(), static_cast<std::size_t>(end - digits.data())});
}

bool run_time_place(ChannelAddress address, PathBuffer& path) {
    const char* directory = environment_variable("XDG_RUNTIME_DIR");
    return directory != nullptr && is_absolute(directory) && path.assign(directory) &&
           path.join("pellux") && path.join(k_socket_name) && append_number(path, address) &&
           path.view().size() < k_place_capacity;
}

bool temporary_place(ChannelAddress address, PathBuffer& path) {
    return path.assign("/tmp/pellux-") && append_number(path, current_user()) &&
           path.join(k_socket_name) && append_number(path, address);
}

} // namespace

ChannelPlace channel_place(ChannelAddress address) {
    ChannelPlace place{};
    PathBuffer path;
    if (run_time_place(address, path) || temporary_place(address, path))
        std::copy(path.view().begin(), path.view().end(), place.begin());
    return place;
}

SystemError check_channel_directory(const ChannelPlace& place, bool create) {
    const PathBuffer path{directory_part(place.data())};
    if (create && ::mkdir(path.c_str(), k_directory_mode) != 0 && errno != EEXIST)
        return last_error();
    const OwnedHandle directory{static_cast<SystemHandle>(
        ::open(path.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC))};
    if (!directory)
        return errno == ENOENT ? last_error() : SystemError{EACCES};
    struct stat found {};
    if (::fstat(descriptor(directory.get()), &found) != 0)
        return last_error();
    const bool ours = found.st_uid == current_user() && (found.st_mode & 0777) == k_directory_mode;
    return ours ? SystemError::none : SystemError{EACCES};
}

sockaddr_un socket_address(const ChannelPlace& place) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::copy(place.begin(), place.end(), address.sun_path);
    return address;
}

bool peer_is_ours(SystemHandle socket, std::int64_t& process) {
    ucred peer{};
    socklen_t size = sizeof peer;
    if (::getsockopt(descriptor(socket), SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0)
        return false;
    process = peer.pid;
    return peer.uid == current_user();
}

} // namespace pellux
