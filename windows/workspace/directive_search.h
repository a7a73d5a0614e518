#pragma once

#include "core/os/loop.h"
#include "core/project/records.h"

namespace pellux {

/// What a file's directive lines say.
struct SaidDirectives {
    String file; ///< the list's entry
    String device;
    String package;
    String options;
    bool is_read = false;

    [[nodiscard]] bool is_silent() const {
        return device.empty() && package.empty() && options.empty();
    }
};

/// Reads what the top design says of a device and, when that names none, looks for the first file
/// of the list that does. The other files are read a few milliseconds in each turn of the loop, as
/// they lie on the disk, until one is found: of 10,000 without a word all are read, and nobody
/// waits for it.
class DirectiveSearch {
public:
    /// `ended` is called from the loop once the other files are done with, unless there is nothing
    /// to look for.
    DirectiveSearch(const Project& project, void (*ended)(void* context), void* context);
    ~DirectiveSearch() { cancel_call(slice_); }
    DirectiveSearch(const DirectiveSearch&) = delete;
    DirectiveSearch& operator=(const DirectiveSearch&) = delete;

    /// Without a file's name there is no top design.
    [[nodiscard]] const SaidDirectives& top() const { return top_; }
    /// The other file that names a device; without a file's name there is none, or not yet.
    [[nodiscard]] const SaidDirectives& other() const { return other_; }
    [[nodiscard]] bool is_running() const { return next_ < names_.size(); }

private:
    void run_slice();

    String directory_;
    Vector<String> names_; ///< of the files to look at
    std::size_t next_ = 0;
    SaidDirectives top_;
    SaidDirectives other_;
    PostedCall slice_;
    void (*ended_)(void* context);
    void* context_;
};

} // namespace pellux
