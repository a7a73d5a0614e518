#include "core/os/files.h"

#include "core/os/file_fault.h"
#include "core/os/linux/system_call.h"

#include <cstring>

#include <linux/limits.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace pellux {

namespace {

/// The names of a file's extended attributes, each with a NUL behind it.
struct AttributeNames {
    char text[XATTR_LIST_MAX];
    std::size_t size = 0;

    /// False when they could not be read.
    [[nodiscard]] bool read(int file) {
        const ssize_t length = ::flistxattr(file, text, sizeof text);
        size = length < 0 ? 0 : static_cast<std::size_t>(length);
        return length >= 0 || errno == ENOTSUP;
    }
    [[nodiscard]] bool next(const char*& name) const {
        name = name == nullptr ? text : name + std::strlen(name) + 1;
        return name < text + size;
    }
    [[nodiscard]] bool has(const char* wanted) const {
        for (const char* name = nullptr; next(name);)
            if (std::strcmp(name, wanted) == 0)
                return true;
        return false;
    }
};

bool starts_with(const char* name, std::string_view start) {
    return std::string_view(name).substr(0, start.size()) == start;
}

/// Sums and signatures of the contents: the new contents have others.
bool is_about_contents(const char* name) {
    return std::strcmp(name, "security.ima") == 0 || std::strcmp(name, "security.evm") == 0;
}

bool copy_attribute(int from, int to, const char* name) {
    char value[XATTR_SIZE_MAX];
    const ssize_t size = ::fgetxattr(from, name, value, sizeof value);
    if (size < 0)
        return false;
    const auto length = static_cast<std::size_t>(size);
    if (::fsetxattr(to, name, value, length, 0) == 0)
        return true;
    // A label that only the system may give is often there already.
    char present[XATTR_SIZE_MAX];
    return ::fgetxattr(to, name, present, sizeof present) == size &&
           std::memcmp(value, present, length) == 0;
}

bool copy_extended_attributes(int from, int to) {
    AttributeNames wanted;
    AttributeNames present;
    bool kept = wanted.read(from);
    for (const char* name = nullptr; wanted.next(name);)
        if (!is_about_contents(name) && !copy_attribute(from, to, name))
            kept = false;
    // An access list that the directory bequeathed could let others in.
    if (!present.read(to))
        return false;
    for (const char* name = nullptr; present.next(name);)
        if (!starts_with(name, "security.") && !wanted.has(name) && ::fremovexattr(to, name) != 0)
            kept = false;
    return kept;
}

/// The mode of `from` for a file of another owner or group: nobody gains by it.
mode_t mode_for(const struct stat& from, const struct stat& to) {
    mode_t mode = from.st_mode & 07777U;
    if (from.st_uid != to.st_uid || from.st_gid != to.st_gid)
        mode &= ~static_cast<mode_t>(S_ISUID | S_ISGID);
    if (from.st_gid != to.st_gid)
        mode &= ~static_cast<mode_t>(S_IRWXG) | ((mode & S_IRWXO) << 3U);
    return mode;
}

} // namespace

SystemError copy_attributes(File& from, File& to, bool& lost) {
    const SystemError fault = file_fault(FileOperation::attributes);
    if (failed(fault))
        return fault;
    const int source = descriptor(from.handle.get());
    const int target = descriptor(to.handle.get());
    struct stat old;
    struct stat made;
    if (::fstat(source, &old) != 0 || ::fstat(target, &made) != 0)
        return last_error();
    // The owner goes first: a change of it takes set-id bits and capabilities away. Who may not
    // give the file away may still give it to another group of theirs.
    if ((old.st_uid != made.st_uid || old.st_gid != made.st_gid) &&
        ::fchown(target, old.st_uid, old.st_gid) != 0)
        static_cast<void>(::fchown(target, static_cast<uid_t>(-1), old.st_gid) == 0);
    const bool kept = copy_extended_attributes(source, target);
    if (::fstat(target, &made) != 0)
        return last_error();
    static_cast<void>(::fchmod(target, mode_for(old, made)) == 0);
    if (::fstat(target, &made) != 0)
        return last_error();
    lost = !kept || made.st_mode != old.st_mode || made.st_uid != old.st_uid ||
           made.st_gid != old.st_gid;
    return SystemError::none;
}

} // namespace pellux
