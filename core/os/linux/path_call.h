#pragma once

#include "core/os/file_fault.h"
#include "core/os/files.h"
#include "core/os/linux/system_call.h"

#include <sys/stat.h>

namespace pellux {

/// Asks the hook, then makes `call(name)`, which answers -1 after a failure.
template <typename Call>
[[nodiscard]] SystemError on_path(FileOperation operation, std::string_view path, Call call) {
    const SystemPath name(path);
    if (failed(name.error()))
        return name.error();
    const SystemError fault = file_fault(operation, path);
    if (failed(fault))
        return fault;
    return call(name.c_str()) == -1 ? last_error() : SystemError::none;
}

[[nodiscard]] inline FileKind kind_of(mode_t mode) {
    if (S_ISREG(mode))
        return FileKind::regular;
    if (S_ISDIR(mode))
        return FileKind::directory;
    return S_ISLNK(mode) ? FileKind::link : FileKind::other;
}

} // namespace pellux
