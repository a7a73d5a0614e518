#pragma once

#include "core/os/files.h"

#include <cerrno>
#include <functional>
#include <string_view>
#include <utility>

namespace pellux::test {

/// Decides on the file operations of the program as long as it lives. A write that fails has
/// written three bytes.
class FileFaults {
public:
    using Decide = std::function<SystemError(FileOperation, std::string_view path)>;

    explicit FileFaults(Decide decide) : decide_(std::move(decide)) {
        set_file_fault_hook(
            [](void* self, FileOperation operation, std::string_view path, std::size_t& partial) {
                partial = 3;
                return static_cast<FileFaults*>(self)->decide_(operation, path);
            },
            this);
    }
    /// Every operation of one kind fails with this number of the system.
    FileFaults(FileOperation failing, int number)
        : FileFaults([=](FileOperation operation, std::string_view) {
              return operation == failing ? SystemError{number} : SystemError::none;
          }) {}
    ~FileFaults() { set_file_fault_hook(nullptr, nullptr); }
    FileFaults(const FileFaults&) = delete;
    FileFaults& operator=(const FileFaults&) = delete;

private:
    Decide decide_;
};

} // namespace pellux::test
