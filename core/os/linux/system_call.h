#pragma once

#include "core/os/handle.h"
#include "core/os/path.h"
#include "core/os/system_error.h"

#include <cerrno>
#include <string_view>

namespace pellux {

[[nodiscard]] inline int descriptor(SystemHandle handle) {
    return static_cast<int>(handle);
}

[[nodiscard]] inline SystemError last_error() {
    return static_cast<SystemError>(errno);
}

/// Repeats a call that answers -1 while it is interrupted by a signal.
template <typename Call>
[[nodiscard]] auto repeat_interrupted(Call call) {
    auto result = call();
    while (result == -1 && errno == EINTR)
        result = call();
    return result;
}

/// What a call that answers 0 or -1 says.
[[nodiscard]] inline SystemError outcome(int result) {
    return result == 0 ? SystemError::none : last_error();
}

/// A path as the system takes it.
class SystemPath {
public:
    explicit SystemPath(std::string_view path) {
        if (path.find('\0') != std::string_view::npos)
            error_ = refuse(Refusal::bad_path);
        else if (!buffer_.assign(path))
            error_ = refuse(Refusal::path_too_long);
    }
    [[nodiscard]] SystemError error() const { return error_; }
    [[nodiscard]] const char* c_str() const { return buffer_.c_str(); }

private:
    SystemError error_ = SystemError::none;
    PathBuffer buffer_;
};

} // namespace pellux
