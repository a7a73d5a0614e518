#pragma once

#include <cstddef>
#include <string_view>

namespace pellux {

/// The longest path that the system takes, with its terminating NUL.
inline constexpr std::size_t k_path_capacity = 4096;

/// A path in place, always NUL-terminated; no memory of its own is asked for.
///
/// Bytes are kept as they are, the separator is the platform's. A text that does not fit or holds
/// a NUL leaves the buffer empty and the call answers false.
class PathBuffer {
public:
    PathBuffer() = default;
    explicit PathBuffer(std::string_view path) { static_cast<void>(assign(path)); }

    [[nodiscard]] bool assign(std::string_view path);
    [[nodiscard]] bool append(std::string_view text);
    /// Adds a separator where there is none, then `name`; an absolute `name` replaces the path.
    [[nodiscard]] bool join(std::string_view name);
    void clear();

    [[nodiscard]] const char* c_str() const { return text_; }
    [[nodiscard]] std::string_view view() const { return {text_, length_}; }
    [[nodiscard]] bool empty() const { return length_ == 0; }

private:
    std::size_t length_ = 0;
    char text_[k_path_capacity] = {};
};

/// The separator that is written; others may be understood besides.
[[nodiscard]] char path_separator();
[[nodiscard]] bool is_separator(char c);
[[nodiscard]] bool is_absolute(std::string_view path);
/// The path up to its last separator, without it: "" for a bare name, "/" for a file in the root.
[[nodiscard]] std::string_view directory_part(std::string_view path);
/// What follows the last separator.
[[nodiscard]] std::string_view file_name_part(std::string_view path);
/// The text after the last '.' of the file name; empty without one.
[[nodiscard]] std::string_view extension_part(std::string_view path);
/// Is that text `extension`, which is given in lower case, whatever its own case?
[[nodiscard]] bool has_extension(std::string_view path, std::string_view extension);
/// The start of a file name, at most `bytes` long: half a UTF-8 character at the end, which some
/// file systems refuse, is left out.
[[nodiscard]] std::string_view shortened_name(std::string_view name, std::size_t bytes);

} // namespace pellux
