#include "core/os/path.h"

#include "core/os/ascii.h"

#include <algorithm>
#include <cstring>

namespace pellux {

namespace {

/// Where the file name starts.
std::size_t name_start(std::string_view path) {
    std::size_t start = path.size();
    while (start > 0 && !is_separator(path[start - 1]))
        --start;
    return start;
}

} // namespace

bool PathBuffer::assign(std::string_view path) {
    if (path.size() >= k_path_capacity || path.find('\0') != std::string_view::npos) {
        clear();
        return false;
    }
    // The text may be a piece of this very buffer.
    if (!path.empty())
        std::memmove(text_, path.data(), path.size());
    length_ = path.size();
    text_[length_] = '\0';
    return true;
}

bool PathBuffer::append(std::string_view text) {
    if (text.size() >= k_path_capacity - length_ || text.find('\0') != std::string_view::npos) {
        clear();
        return false;
    }
    if (!text.empty())
        std::memmove(text_ + length_, text.data(), text.size());
    length_ += text.size();
    text_[length_] = '\0';
    return true;
}

bool PathBuffer::join(std::string_view name) {
    if (is_absolute(name))
        return assign(name);
    if (length_ == 0 || is_separator(text_[length_ - 1]))
        return append(name);
    const char separator = path_separator();
    return append({&separator, 1}) && append(name);
}

void PathBuffer::clear() {
    length_ = 0;
    text_[0] = '\0';
}

std::string_view directory_part(std::string_view path) {
    std::size_t end = name_start(path);
    // A root keeps its separator: without it the path would be another one.
    while (end > 0 && is_separator(path[end - 1]) &&
           is_absolute(path.substr(0, end - 1)) == is_absolute(path.substr(0, end)))
        --end;
    return path.substr(0, end);
}

std::string_view file_name_part(std::string_view path) {
    return path.substr(name_start(path));
}

std::string_view extension_part(std::string_view path) {
    const std::string_view name = file_name_part(path);
    const std::size_t dot = name.rfind('.');
    return dot == std::string_view::npos ? std::string_view() : name.substr(dot + 1);
}

bool has_extension(std::string_view path, std::string_view extension) {
    return same_ignoring_case(extension_part(path), extension);
}

std::string_view shortened_name(std::string_view name, std::size_t bytes) {
    if (name.size() <= bytes)
        return name;
    while (bytes > 0 && (static_cast<unsigned char>(name[bytes]) & 0xC0U) == 0x80U)
        --bytes;
    return name.substr(0, bytes);
}

} // namespace pellux
