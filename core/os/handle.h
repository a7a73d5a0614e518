#pragma once

#include <cstdint>
#include <utility>

namespace pellux {

/// What the operating system calls an open file, socket or process; its value means nothing above
/// this folder.
enum class SystemHandle : std::intptr_t { none = -1 };

/// Closes `handle`; `SystemHandle::none` is allowed and does nothing.
void close_handle(SystemHandle handle);

/// A system handle with one owner.
class OwnedHandle {
public:
    OwnedHandle() = default;
    explicit OwnedHandle(SystemHandle handle) : handle_(handle) {}
    OwnedHandle(OwnedHandle&& other) noexcept
        : handle_(std::exchange(other.handle_, SystemHandle::none)) {}
    OwnedHandle& operator=(OwnedHandle&& other) noexcept {
        if (this != &other)
            reset(std::exchange(other.handle_, SystemHandle::none));
        return *this;
    }
    ~OwnedHandle() { close_handle(handle_); }

    [[nodiscard]] SystemHandle get() const { return handle_; }
    [[nodiscard]] SystemHandle release() { return std::exchange(handle_, SystemHandle::none); }
    void reset(SystemHandle handle = SystemHandle::none) {
        close_handle(std::exchange(handle_, handle));
    }
    explicit operator bool() const { return handle_ != SystemHandle::none; }

private:
    SystemHandle handle_ = SystemHandle::none;
};

} // namespace pellux
