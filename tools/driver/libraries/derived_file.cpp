#include "tools/driver/libraries/derived_file.h"

#include "core/os/files.h"

#include <array>
#include <span>

namespace pellux {

SystemError write_derived_file(std::string_view path, std::string_view text) {
    File file;
    PathBuffer name;
    SystemError error = create_temporary(path, 0644, file, name);
    if (failed(error))
        return error;
    error = write_all(file, std::as_bytes(std::span(text)));
    const SystemError closing = close_file(file);
    if (!failed(error))
        error = failed(closing) ? closing : rename_file(name.view(), path);
    if (failed(error))
        static_cast<void>(remove_file(name.view()));
    return error;
}

SystemError try_writing(std::string_view path) {
    constexpr std::array<std::byte, 4096> k_page{};
    File file;
    PathBuffer name;
    SystemError error = create_temporary(path, 0600, file, name);
    if (failed(error))
        return error;
    error = write_all(file, k_page);
    const SystemError closing = close_file(file);
    static_cast<void>(remove_file(name.view()));
    return failed(error) ? error : closing;
}

} // namespace pellux
