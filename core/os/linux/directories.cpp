#include "core/os/files.h"

#include "core/os/file_fault.h"
#include "core/os/linux/system_call.h"

#include <cstdio>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace pellux {

namespace {

/// Asks the hook, then makes `call(name)`, which answers 0 or -1.
template <typename Call>
SystemError on_path(FileOperation operation, std::string_view path, Call call) {
    const SystemPath name(path);
    if (failed(name.error()))
        return name.error();
    const SystemError fault = file_fault(operation, path);
    return failed(fault) ? fault : outcome(call(name.c_str()));
}

template <typename Call>
SystemError on_paths(FileOperation operation, std::string_view from, std::string_view to,
                     Call call) {
    const SystemPath old_name(from);
    if (failed(old_name.error()))
        return old_name.error();
    return on_path(operation, to,
                   [&](const char* new_name) { return call(old_name.c_str(), new_name); });
}

int rename_without_replacing(const char* from, const char* to) {
    const int renamed = ::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE);
    // Some file systems do not know the flag; a moment without protection remains there.
    if (renamed == 0 || (errno != EINVAL && errno != ENOSYS))
        return renamed;
    struct stat stat;
    if (::lstat(to, &stat) == 0) {
        errno = EEXIST;
        return -1;
    }
    return ::rename(from, to);
}

FileKind kind_of(int directory, const dirent64& entry) {
    switch (entry.d_type) {
    case DT_REG:
        return FileKind::regular;
    case DT_DIR:
        return FileKind::directory;
    case DT_LNK:
        return FileKind::link;
    case DT_UNKNOWN: {
        struct stat stat;
        if (::fstatat(directory, entry.d_name, &stat, AT_SYMLINK_NOFOLLOW) != 0)
            return FileKind::none;
        if (S_ISREG(stat.st_mode))
            return FileKind::regular;
        if (S_ISDIR(stat.st_mode))
            return FileKind::directory;
        return S_ISLNK(stat.st_mode) ? FileKind::link : FileKind::other;
    }
    default:
        return FileKind::other;
    }
}

int open_directory(const char* name) {
    return repeat_interrupted(
        [&] { return ::open(name, O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NONBLOCK); });
}

} // namespace

SystemError rename_file(std::string_view from, std::string_view to) {
    return on_paths(FileOperation::rename, from, to,
                    [](const char* a, const char* b) { return ::rename(a, b); });
}

SystemError rename_to_new_name(std::string_view from, std::string_view to) {
    return on_paths(FileOperation::rename, from, to, rename_without_replacing);
}

SystemError link_file(std::string_view from, std::string_view to) {
    return on_paths(FileOperation::link, from, to,
                    [](const char* a, const char* b) { return ::link(a, b); });
}

SystemError remove_file(std::string_view path) {
    return on_path(FileOperation::remove, path, [](const char* name) { return ::unlink(name); });
}

SystemError make_directory(std::string_view path, std::uint32_t permissions) {
    return on_path(FileOperation::make_directory, path,
                   [&](const char* name) { return ::mkdir(name, permissions); });
}

SystemError remove_directory(std::string_view path) {
    return on_path(FileOperation::remove, path, [](const char* name) { return ::rmdir(name); });
}

SystemError flush_directory(std::string_view path) {
    return on_path(FileOperation::flush_directory, path, [](const char* name) {
        const OwnedHandle directory{SystemHandle{open_directory(name)}};
        if (!directory) {
            // A directory that may be written but not read cannot be flushed by itself.
            if (errno != EACCES)
                return -1;
            ::sync();
            return 0;
        }
        const int flushed =
            repeat_interrupted([&] { return ::fsync(descriptor(directory.get())); });
        // Some file systems flush names without being asked, and say so in this way.
        return flushed != 0 && (errno == EINVAL || errno == EOPNOTSUPP) ? 0 : flushed;
    });
}

SystemError list_directory(std::string_view path, DirectoryVisitor visit, void* context) {
    return on_path(FileOperation::list, path, [&](const char* name) {
        const OwnedHandle directory{SystemHandle{open_directory(name)}};
        if (!directory)
            return -1;
        const int handle = descriptor(directory.get());
        alignas(dirent64) char entries[16384];
        for (;;) {
            const ssize_t size = ::getdents64(handle, entries, sizeof entries);
            if (size <= 0)
                return size == 0 ? 0 : -1;
            for (ssize_t at = 0; at < size;) {
                const auto& entry = *reinterpret_cast<const dirent64*>(entries + at);
                at += entry.d_reclen;
                const std::string_view entry_name(entry.d_name);
                if (entry_name == "." || entry_name == "..")
                    continue;
                if (!visit(context, entry_name, kind_of(handle, entry)))
                    return 0;
            }
        }
    });
}

SystemError change_directory(std::string_view path) {
    return on_path(FileOperation::open, path, [](const char* name) { return ::chdir(name); });
}

} // namespace pellux
