#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace pellux {

/// An empty directory that is the current one as long as the structure lives.
struct Scratch {
    std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::path directory;

    Scratch() {
        std::string name = (std::filesystem::temp_directory_path() / "driver-XXXXXX").string();
        directory = ::mkdtemp(name.data());
        std::filesystem::current_path(directory);
    }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;
    ~Scratch() {
        std::filesystem::current_path(before);
        std::filesystem::remove_all(directory);
    }

    void write(const std::string& name, const std::string& text) const {
        std::ofstream(directory / name, std::ios::binary) << text;
    }
    [[nodiscard]] std::string read(const std::string& name) const {
        std::ostringstream text;
        text << std::ifstream(directory / name, std::ios::binary).rdbuf();
        return text.str();
    }
    void make_directory(const std::string& name) const {
        std::filesystem::create_directories(directory / name);
    }
    [[nodiscard]] std::string path(const std::string& name) const {
        return (directory / name).string();
    }
};

} // namespace pellux
