#include "core/os/system_error.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace pellux {

bool is_missing(SystemError error) {
    const int number = static_cast<int>(error);
    return number == ENOENT || number == ENOTDIR;
}

bool is_denied(SystemError error) {
    const int number = static_cast<int>(error);
    return number == EACCES || number == EPERM || number == EROFS;
}

bool is_out_of_room(SystemError error) {
    const int number = static_cast<int>(error);
    return number == ENOSPC || number == EDQUOT || number == EFBIG;
}

bool is_taken(SystemError error) {
    return static_cast<int>(error) == EEXIST;
}

bool is_busy(SystemError error) {
    const int number = static_cast<int>(error);
    return number == EBUSY || number == EWOULDBLOCK || number == ETXTBSY;
}

SystemError refuse(Refusal reason) {
    switch (reason) {
    case Refusal::bad_path:
        return SystemError{EINVAL};
    case Refusal::path_too_long:
        return SystemError{ENAMETOOLONG};
    case Refusal::link_loop:
        return SystemError{ELOOP};
    case Refusal::directory:
        return SystemError{EISDIR};
    case Refusal::not_a_file:
        return SystemError{EOPNOTSUPP};
    case Refusal::taken:
        return SystemError{EEXIST};
    case Refusal::too_large:
        return SystemError{EFBIG};
    case Refusal::damaged:
        break;
    }
    return SystemError{EIO};
}

std::string_view describe(SystemError error, std::span<char> buffer) {
    if (buffer.empty())
        return {};
    char own[256];
    const char* text = ::strerror_r(static_cast<int>(error), own, sizeof own);
    const std::size_t length = std::min(std::strlen(text), buffer.size() - 1);
    std::memcpy(buffer.data(), text, length);
    buffer[length] = '\0';
    return {buffer.data(), length};
}

} // namespace pellux
