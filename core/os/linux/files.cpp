#include "core/os/files.h"

#include "core/os/file_fault.h"
#include "core/os/linux/system_call.h"

#include <algorithm>

#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace pellux {

namespace {

int open_flags(OpenMode mode) {
    switch (mode) {
    case OpenMode::read:
        // Without O_NONBLOCK a FIFO that took the file's place would make us wait for a writer.
        return O_RDONLY | O_NONBLOCK;
    case OpenMode::truncate:
        return O_WRONLY | O_CREAT | O_TRUNC;
    case OpenMode::create:
        return O_WRONLY | O_CREAT | O_EXCL;
    case OpenMode::append:
        return O_WRONLY | O_CREAT | O_APPEND;
    case OpenMode::update:
        break;
    }
    return O_RDWR;
}

SystemError refuse_kind(const struct stat& stat) {
    if (S_ISREG(stat.st_mode))
        return SystemError::none;
    return refuse(S_ISDIR(stat.st_mode) ? Refusal::directory : Refusal::not_a_file);
}

/// Write at the file's own position for a negative `offset`.
SystemError write_bytes(int file, std::int64_t offset, std::span<const std::byte> bytes) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const std::byte* from = bytes.data() + done;
        const std::size_t left = bytes.size() - done;
        const ssize_t count = repeat_interrupted([&] {
            return offset < 0 ? ::write(file, from, left)
                              : ::pwrite(file, from, left, offset + static_cast<off_t>(done));
        });
        if (count < 0)
            return last_error();
        if (count == 0)
            return refuse(Refusal::damaged);
        done += static_cast<std::size_t>(count);
    }
    return SystemError::none;
}

SystemError write_or_fail(File& file, std::int64_t offset, std::span<const std::byte> bytes) {
    std::size_t partial = 0;
    const SystemError fault = file_fault(FileOperation::write, {}, partial);
    if (failed(fault)) {
        const auto part = bytes.first(std::min(partial, bytes.size()));
        static_cast<void>(write_bytes(descriptor(file.handle.get()), offset, part));
        return fault;
    }
    return write_bytes(descriptor(file.handle.get()), offset, bytes);
}

} // namespace

void close_handle(SystemHandle handle) {
    // An interrupted close has closed nevertheless.
    if (handle != SystemHandle::none)
        ::close(descriptor(handle));
}

SystemError open_file(File& file, std::string_view path, OpenMode mode, std::uint32_t permissions) {
    const SystemPath name(path);
    if (failed(name.error()))
        return name.error();
    const SystemError fault = file_fault(FileOperation::open, path);
    if (failed(fault))
        return fault;
    struct stat stat;
    if (mode == OpenMode::read) {
        // Merely opening some devices does something, so that their kind is looked at first.
        if (::stat(name.c_str(), &stat) != 0)
            return last_error();
        const SystemError refusal = refuse_kind(stat);
        if (failed(refusal))
            return refusal;
    }
    const int opened = repeat_interrupted(
        [&] { return ::open(name.c_str(), open_flags(mode) | O_CLOEXEC | O_NOCTTY, permissions); });
    if (opened < 0)
        return last_error();
    OwnedHandle handle{SystemHandle{opened}};
    if (mode == OpenMode::read) {
        if (::fstat(opened, &stat) != 0)
            return last_error();
        const SystemError refusal = refuse_kind(stat);
        if (failed(refusal))
            return refusal;
    }
    file.handle = std::move(handle);
    return SystemError::none;
}

SystemError read_some(File& file, std::span<std::byte> into, std::size_t& got) {
    const SystemError fault = file_fault(FileOperation::read);
    if (failed(fault))
        return fault;
    const ssize_t count = repeat_interrupted(
        [&] { return ::read(descriptor(file.handle.get()), into.data(), into.size()); });
    if (count < 0)
        return last_error();
    got = static_cast<std::size_t>(count);
    return SystemError::none;
}

SystemError read_at(File& file, std::int64_t offset, std::span<std::byte> into, std::size_t& got) {
    const SystemError fault = file_fault(FileOperation::read);
    if (failed(fault))
        return fault;
    std::size_t done = 0;
    while (done < into.size()) {
        const ssize_t count = repeat_interrupted([&] {
            return ::pread(descriptor(file.handle.get()), into.data() + done, into.size() - done,
                           offset + static_cast<off_t>(done));
        });
        if (count < 0)
            return last_error();
        if (count == 0)
            break;
        done += static_cast<std::size_t>(count);
    }
    got = done;
    return SystemError::none;
}

SystemError write_all(File& file, std::span<const std::byte> bytes) {
    return write_or_fail(file, -1, bytes);
}

SystemError write_at(File& file, std::int64_t offset, std::span<const std::byte> bytes) {
    return write_or_fail(file, offset, bytes);
}

SystemError truncate_file(File& file, std::int64_t size) {
    const SystemError fault = file_fault(FileOperation::truncate);
    if (failed(fault))
        return fault;
    return outcome(
        repeat_interrupted([&] { return ::ftruncate(descriptor(file.handle.get()), size); }));
}

SystemError flush_file(File& file) {
    const SystemError fault = file_fault(FileOperation::flush);
    if (failed(fault))
        return fault;
    return outcome(repeat_interrupted([&] { return ::fsync(descriptor(file.handle.get())); }));
}

SystemError close_file(File& file) {
    const SystemError fault = file_fault(FileOperation::close);
    const int closed = ::close(descriptor(file.handle.release()));
    if (failed(fault))
        return fault;
    return closed == 0 || errno == EINTR ? SystemError::none : last_error();
}

SystemError lock_file(File& file, FileLock lock) {
    const SystemError fault = file_fault(FileOperation::lock);
    if (failed(fault))
        return fault;
    const int kind = (lock == FileLock::shared ? LOCK_SH : LOCK_EX) | LOCK_NB;
    const int locked =
        repeat_interrupted([&] { return ::flock(descriptor(file.handle.get()), kind); });
    return locked != 0 && is_busy(last_error()) ? last_error() : SystemError::none;
}

void make_size_limit_an_error() {
    ::signal(SIGXFSZ, SIG_IGN);
}

} // namespace pellux
