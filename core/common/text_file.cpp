#include "core/common/text_file.h"

#include "core/os/files.h"

#include <array>

namespace pellux {

SystemError read_text_start(std::string_view path, std::size_t limit, String& text,
                            bool& has_more) {
    File file;
    SystemError error = open_file(file, path, OpenMode::read);
    if (failed(error))
        return error;
    // The size is not asked for: the file may grow, or be one whose size says nothing.
    String bytes;
    std::array<std::byte, 16384> piece;
    std::size_t got = 1;
    while (got != 0 && bytes.size() <= limit) {
        error = read_some(file, piece, got);
        if (failed(error))
            return error;
        bytes.append(reinterpret_cast<const char*>(piece.data()), got);
    }
    has_more = bytes.size() > limit;
    if (has_more)
        bytes.resize(limit);
    text = std::move(bytes);
    return SystemError::none;
}

TextFileStatus read_text_file(std::string_view path, std::size_t limit, String& text,
                              SystemError& error) {
    String bytes;
    bool has_more = false;
    error = read_text_start(path, limit, bytes, has_more);
    if (failed(error))
        return TextFileStatus::failed;
    if (has_more)
        return TextFileStatus::too_large;
    text = std::move(bytes);
    return TextFileStatus::read;
}

String error_text(SystemError error) {
    std::array<char, 200> buffer;
    return String(describe(error, buffer));
}

} // namespace pellux
