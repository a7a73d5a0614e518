#include "core/os/files.h"

#include "core/os/linux/path_call.h"

#include <climits>
#include <cstdlib>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace pellux {

namespace {

void fill(FileStat& stat, const struct stat& from) {
    stat.kind = kind_of(from.st_mode);
    stat.device = from.st_dev;
    stat.inode = from.st_ino;
    stat.links = from.st_nlink;
    stat.size = from.st_size;
    stat.modified_ns = from.st_mtim.tv_sec * 1'000'000'000 + from.st_mtim.tv_nsec;
    stat.mode = from.st_mode & 07777U;
    stat.owner = from.st_uid;
    stat.group = from.st_gid;
}

SystemError stat_name(std::string_view path, int flags, FileStat& stat) {
    struct stat found;
    const SystemError error = on_path(FileOperation::stat, path, [&](const char* name) {
        return ::fstatat(AT_FDCWD, name, &found, flags);
    });
    if (!failed(error))
        fill(stat, found);
    return error;
}

SystemError take_path(const char* text, std::size_t length, PathBuffer& path) {
    return path.assign({text, length}) ? SystemError::none : refuse(Refusal::path_too_long);
}

} // namespace

SystemError stat_file(std::string_view path, FileStat& stat) {
    return stat_name(path, 0, stat);
}

SystemError stat_link(std::string_view path, FileStat& stat) {
    return stat_name(path, AT_SYMLINK_NOFOLLOW, stat);
}

SystemError stat_open_file(File& file, FileStat& stat) {
    const SystemError fault = file_fault(FileOperation::stat);
    if (failed(fault))
        return fault;
    struct stat found;
    if (::fstat(descriptor(file.handle.get()), &found) != 0)
        return last_error();
    fill(stat, found);
    return SystemError::none;
}

SystemError read_link(std::string_view path, PathBuffer& target) {
    char text[k_path_capacity];
    ssize_t length = 0;
    const SystemError error = on_path(FileOperation::stat, path, [&](const char* name) {
        return length = ::readlink(name, text, sizeof text);
    });
    if (failed(error))
        return error;
    // A text that fills the buffer may have been cut.
    if (static_cast<std::size_t>(length) == sizeof text)
        return refuse(Refusal::path_too_long);
    return take_path(text, static_cast<std::size_t>(length), target);
}

bool is_write_protected(std::string_view path) {
    FileStat stat;
    if (failed(stat_file(path, stat)) || stat.kind != FileKind::regular)
        return false;
    constexpr std::uint32_t k_write_bits = S_IWUSR | S_IWGRP | S_IWOTH;
    const SystemError error = on_path(FileOperation::stat, path, [](const char* name) {
        return ::faccessat(AT_FDCWD, name, W_OK, AT_EACCESS);
    });
    return (stat.mode & k_write_bits) == 0 || is_denied(error);
}

SystemError real_path(std::string_view path, PathBuffer& resolved) {
    static_assert(k_path_capacity >= PATH_MAX);
    char text[PATH_MAX];
    const SystemError error = on_path(FileOperation::stat, path, [&](const char* name) {
        return ::realpath(name, text) == nullptr ? -1 : 0;
    });
    return failed(error) ? error : take_path(text, std::string_view(text).size(), resolved);
}

SystemError current_directory(PathBuffer& path) {
    const SystemError fault = file_fault(FileOperation::stat);
    if (failed(fault))
        return fault;
    char text[k_path_capacity];
    if (::getcwd(text, sizeof text) == nullptr)
        return last_error();
    return take_path(text, std::string_view(text).size(), path);
}

} // namespace pellux
