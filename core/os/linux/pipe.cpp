#include "core/os/linux/system_call.h"
#include "core/os/process.h"

#include <array>
#include <csignal>
#include <ctime>

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace pellux {
namespace {

/// Writes to something that is no socket, where a reader that is gone would end the program.
ssize_t write_without_signal(int to, std::span<const std::byte> bytes) {
    sigset_t pipe_signal;
    sigset_t before;
    ::sigemptyset(&pipe_signal);
    ::sigaddset(&pipe_signal, SIGPIPE);
    ::pthread_sigmask(SIG_BLOCK, &pipe_signal, &before);
    const ssize_t written = ::write(to, bytes.data(), bytes.size());
    const int error = errno;
    if (written < 0 && error == EPIPE && ::sigismember(&before, SIGPIPE) == 0) {
        const timespec now{};
        static_cast<void>(
            repeat_interrupted([&] { return ::sigtimedwait(&pipe_signal, nullptr, &now); }));
    }
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    errno = error;
    return written;
}

} // namespace

SystemError make_pipe(OwnedHandle& read_end, OwnedHandle& write_end) {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        return last_error();
    read_end.reset(static_cast<SystemHandle>(ends[0]));
    write_end.reset(static_cast<SystemHandle>(ends[1]));
    return SystemError::none;
}

SystemError read_handle(SystemHandle handle, std::span<std::byte> into, std::size_t& got,
                        bool& would_wait) {
    got = 0;
    would_wait = false;
    const ssize_t count =
        repeat_interrupted([&] { return ::read(descriptor(handle), into.data(), into.size()); });
    if (count >= 0) {
        got = static_cast<std::size_t>(count);
        return SystemError::none;
    }
    would_wait = errno == EAGAIN;
    return would_wait ? SystemError::none : last_error();
}

SystemError write_handle(SystemHandle handle, std::span<const std::byte> bytes) {
    const int to = descriptor(handle);
    while (!bytes.empty()) {
        ssize_t written = ::send(to, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (written < 0 && errno == ENOTSOCK)
            written = write_without_signal(to, bytes);
        if (written >= 0) {
            bytes = bytes.subspan(static_cast<std::size_t>(written));
        } else if (errno == EAGAIN) {
            pollfd wanted{to, POLLOUT, 0};
            static_cast<void>(::poll(&wanted, 1, -1));
        } else if (errno != EINTR) {
            return last_error();
        }
    }
    return SystemError::none;
}

void set_non_blocking(SystemHandle handle) {
    const int flags = ::fcntl(descriptor(handle), F_GETFL);
    if (flags != -1)
        ::fcntl(descriptor(handle), F_SETFL, flags | O_NONBLOCK);
}

SystemHandle standard_output() {
    return static_cast<SystemHandle>(STDOUT_FILENO);
}

SystemHandle standard_errors() {
    return static_cast<SystemHandle>(STDERR_FILENO);
}

} // namespace pellux
