#pragma once

#include "core/common/containers.h"

#include <cstdint>
#include <string_view>

namespace pellux {

/// How far a compile is: the compiler goes through its files in order, and says which one it begins
/// with; what need not be compiled again it passes over in silence. Within the file the time goes
/// on as it did in the last compile.
class CompileProgress {
public:
    /// `expected_ms`: what the whole took last; 0: nobody knows.
    void start(Vector<String> files, std::int64_t expected_ms);
    void begin_file(std::string_view name);

    [[nodiscard]] std::size_t file_count() const { return files_.size(); }
    /// Number of the file that is compiled, from 1; 0: none yet.
    [[nodiscard]] std::size_t file_number() const { return number_; }
    /// Thousandths of the whole; never less than it was.
    [[nodiscard]] int done_part() const;
    [[nodiscard]] std::int64_t elapsed_ms() const;

private:
    Vector<String> files_;
    std::size_t number_ = 0;
    std::int64_t start_ms_ = 0;
    std::int64_t expected_ms_ = 0;
};

} // namespace pellux
