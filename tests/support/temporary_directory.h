#pragma once

#include "core/os/environment.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>

namespace pellux::test {

/// A new directory for one test, removed with all that lies in it.
class TemporaryDirectory {
public:
    /// In `base` where there is such a directory.
    explicit TemporaryDirectory(std::filesystem::path base = {}) {
        if (!std::filesystem::is_directory(base))
            base = std::filesystem::temp_directory_path();
        std::string name = (base / "pellux-test-XXXXXX").string();
        if (::mkdtemp(name.data()) == nullptr)
            throw std::runtime_error("no temporary directory");
        // Paths are compared with those that the system has resolved.
        root_ = std::filesystem::canonical(name);
    }
    ~TemporaryDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(root_, ignored);
    }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    /// The full path of `name`; the directory's own for an empty one.
    [[nodiscard]] std::string path(std::string_view name = {}) const {
        return name.empty() ? root_.string() : (root_ / name).string();
    }
    std::string write(std::string_view name, std::string_view bytes) const {
        std::filesystem::create_directories((root_ / name).parent_path());
        std::ofstream(root_ / name, std::ios::binary) << bytes;
        return path(name);
    }
    /// "(missing)" where there is no such file.
    [[nodiscard]] std::string read(std::string_view name) const {
        std::ifstream file(root_ / name, std::ios::binary);
        return file ? std::string(std::istreambuf_iterator<char>(file), {}) : "(missing)";
    }
    /// The contents of all files below one of its directories, by their paths from it.
    [[nodiscard]] std::map<std::string, std::string> files(std::string_view directory) const {
        std::map<std::string, std::string> found;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(path(directory)))
            found[entry.path().lexically_relative(root_)] =
                entry.is_regular_file() ? read(entry.path().string()) : "";
        return found;
    }
    /// All names in one of its directories.
    [[nodiscard]] std::set<std::string> names(std::string_view directory = {}) const {
        std::set<std::string> found;
        std::error_code missing;
        for (const auto& entry : std::filesystem::directory_iterator(path(directory), missing))
            found.insert(entry.path().filename().string());
        return found;
    }

private:
    std::filesystem::path root_;
};

/// An environment variable with another value (null: none) for a while.
class ScopedVariable {
public:
    ScopedVariable(const char* name, const char* value) : name_(name) {
        if (const char* old = environment_variable(name))
            old_ = old;
        set_environment_variable(name, value);
    }
    ~ScopedVariable() { set_environment_variable(name_, old_ ? old_->c_str() : nullptr); }
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;

private:
    const char* name_;
    std::optional<std::string> old_;
};

} // namespace pellux::test
