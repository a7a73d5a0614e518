#pragma once

#include "core/os/process.h"

#include <string_view>

namespace pellux {

/// One of the program's own streams, which may be a terminal: lines and tabs pass, any other
/// control character, U+0080 to U+009F too, is written as its JSON escape. Asks for no memory. What
/// cannot be written is lost, and known by `error`.
class Terminal {
public:
    explicit Terminal(SystemHandle handle) : handle_(handle) {}

    /// A character may come in two pieces.
    void write(std::string_view text);
    /// Ends a line that was begun.
    void end_line();
    /// The first failure of a writing.
    [[nodiscard]] SystemError error() const { return error_; }

private:
    void put(char c);
    void flush();

    SystemHandle handle_;
    SystemError error_ = SystemError::none;
    bool at_line_start_ = true;
    bool after_c2_ = false; ///< the byte before was 0xC2, not yet written
    std::size_t used_ = 0;
    char buffer_[1024];
};

} // namespace pellux
