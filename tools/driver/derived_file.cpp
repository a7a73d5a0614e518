#include "tools/driver/derived_file.h"

#include "core/os/files.h"

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

} // namespace pellux
