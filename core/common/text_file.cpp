#include "core/common/text_file.h"

#include "core/os/files.h"

#include <array>

namespace pellux {

TextFileStatus read_text_file(std::string_view path, std::size_t limit, String& text,
                              SystemError& error) {
    File file;
    error = open_file(file, path, OpenMode::read);
    if (failed(error))
        return TextFileStatus::failed;
    // The size is not asked for: the file may grow, or be one whose size says nothing.
    String bytes;
    std::array<std::byte, 16384> piece;
    for (;;) {
        std::size_t got = 0;
        error = read_some(file, piece, got);
        if (failed(error))
            return TextFileStatus::failed;
        if (got == 0)
            break;
        if (bytes.size() + got > limit)
            return TextFileStatus::too_large;
        bytes.append(reinterpret_cast<const char*>(piece.data()), got);
    }
    text = std::move(bytes);
    return TextFileStatus::read;
}

String error_text(SystemError error) {
    std::array<char, 200> buffer;
    return String(describe(error, buffer));
}

} // namespace pellux
