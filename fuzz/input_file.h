#pragma once

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include <unistd.h>

namespace pellux {

/// Writes `bytes` to this program's file for its inputs, which goes when it ends; the file's path.
inline const char* write_input_file(std::string_view bytes) {
    static const struct InputFile {
        std::string path =
            std::filesystem::temp_directory_path() / ("pellux-fuzz-" + std::to_string(::getpid()));
        ~InputFile() { std::filesystem::remove(path); }
    } s_file;
    // Some file systems wait for the disk when a file is emptied, not when it is new.
    std::filesystem::remove(s_file.path);
    std::ofstream(s_file.path, std::ios::binary) << bytes;
    return s_file.path.c_str();
}

} // namespace pellux
