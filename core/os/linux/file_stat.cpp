#include "core/os/files.h"

#include "core/os/file_fault.h"
#include "core/os/linux/system_call.h"

#include <climits>
#include <cstdlib>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace pellux {

namespace {

FileKind kind_of(mode_t mode) {
    if (S_ISREG(mode))
        return FileKind::regular;
    if (S_ISDIR(mode))
        return FileKind::directory;
    return S_ISLNK(mode) ? FileKind::link : FileKind::other;
}

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
    const SystemPath name(path);
    if (failed(name.error()))
        return name.error();
    const SystemError fault = file_fault(FileOperation::stat, path);
    if (failed(fault))
        return fault;
    struct stat found;
    if (::fstatat(AT_FDCWD, name.c_str(), &found, flags) != 0)
        return last_error();
    fill(stat, found);
    return SystemError::none;
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
    const SystemPath name(path);
    if (failed(name.error()))
        return name.error();
    const SystemError fault = file_fault(FileOperation::stat, path);
    if (failed(fault))
        return fault;
    char text[k_path_capacity];
    const ssize_t length = ::readlink(name.c_str(), text, sizeof text);
    if (length < 0)
        return last_error();
    // A text that fills the buffer may have been cut.
    if (static_cast<std::size_t>(length) == sizeof text)
        return refuse(Refusal::path_too_long);
    return take_path(text, static_cast<std::size_t>(length), target);
}

SystemError real_path(std::string_view path, PathBuffer& resolved) {
    const SystemPath name(path);
    if (failed(name.error()))
        return name.error();
    const SystemError fault = file_fault(FileOperation::stat, path);
    if (failed(fault))
        return fault;
    static_assert(k_path_capacity >= PATH_MAX);
    char text[PATH_MAX];
    if (::realpath(name.c_str(), text) == nullptr)
        return last_error();
    return take_path(text, std::string_view(text).size(), resolved);
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
