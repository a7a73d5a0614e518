#include "core/os/files.h"

#include "core/os/linux/path_call.h"

#include <cstdio>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace pellux {

namespace {

template <typename Call>
SystemError rename_by(Call call, std::string_view from, std::string_view to) {
    const SystemPath old_name(from);
    if (failed(old_name.error()))
        return old_name.error();
    return on_path(FileOperation::rename, to,
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

FileKind entry_kind(int directory, const dirent64& entry) {
    if (entry.d_type != DT_UNKNOWN)
        return kind_of(static_cast<mode_t>(DTTOIF(entry.d_type)));
    struct stat stat;
    if (::fstatat(directory, entry.d_name, &stat, AT_SYMLINK_NOFOLLOW) != 0)
        return FileKind::none;
    return kind_of(stat.st_mode);
}

int open_directory(const char* name) {
    return repeat_interrupted(
        [&] { return ::open(name, O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NONBLOCK); });
}

} // namespace

SystemError rename_file(std::string_view from, std::string_view to) {
    return rename_by(::rename, from, to);
}

SystemError rename_to_new_name(std::string_view from, std::string_view to) {
    return rename_by(rename_without_replacing, from, to);
}

SystemError exchange_files(std::string_view one, std::string_view other) {
    return rename_by(
        [](const char* from, const char* to) {
            return ::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_EXCHANGE);
        },
        one, other);
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
                if (!visit(context, entry_name, entry_kind(handle, entry)))
                    return 0;
            }
        }
    });
}

SystemError change_directory(std::string_view path) {
    return on_path(FileOperation::open, path, [](const char* name) { return ::chdir(name); });
}

} // namespace pellux
