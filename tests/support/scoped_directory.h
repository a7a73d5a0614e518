#pragma once

#include <filesystem>
#include <string>

namespace pellux::test {

/// Another current directory for a while.
class ScopedDirectory {
public:
    explicit ScopedDirectory(const std::string& path) : old_(std::filesystem::current_path()) {
        std::filesystem::current_path(path);
    }
    ~ScopedDirectory() {
        std::error_code ignored;
        std::filesystem::current_path(old_, ignored);
    }
    ScopedDirectory(const ScopedDirectory&) = delete;
    ScopedDirectory& operator=(const ScopedDirectory&) = delete;

private:
    std::filesystem::path old_;
};

} // namespace pellux::test
