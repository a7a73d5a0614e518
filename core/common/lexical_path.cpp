#include "core/common/lexical_path.h"

#include "core/os/path.h"

namespace pellux {
namespace {

/// Takes the first component off `path`, separators passed over; empty at the end.
std::string_view next_component(std::string_view& path) {
    while (!path.empty() && is_separator(path.front()))
        path.remove_prefix(1);
    std::size_t length = 0;
    while (length < path.size() && !is_separator(path[length]))
        ++length;
    const std::string_view component = path.substr(0, length);
    path.remove_prefix(length);
    return component;
}

void add_components(String& path, std::string_view added) {
    for (std::string_view name = next_component(added); !name.empty();
         name = next_component(added)) {
        if (name == ".")
            continue;
        if (name == "..") {
            path.resize(directory_part(view(path)).size());
            continue;
        }
        if (path.empty() || !is_separator(path.back()))
            path += path_separator();
        path += name;
    }
}

/// Is an absolute path already as `absolute_path` answers it?
bool is_resolved(std::string_view path) {
    bool begins = false; ///< behind a separator
    for (const char c : path) {
        if (begins && (c == '.' || is_separator(c)))
            return false;
        begins = is_separator(c);
    }
    return !begins;
}

} // namespace

String joined_path(std::string_view directory, std::string_view name) {
    if (is_absolute(name))
        return String(name);
    String path(directory);
    if (!path.empty() && !is_separator(path.back()))
        path += path_separator();
    return path += name;
}

String absolute_path(std::string_view directory, std::string_view path) {
    if (is_absolute(path) && is_resolved(path))
        return String(path);
    String whole;
    if (!is_absolute(path))
        add_components(whole, directory);
    add_components(whole, path);
    return whole;
}

String relative_path(std::string_view directory, std::string_view file) {
    for (;;) {
        std::string_view rest_of_directory = directory;
        std::string_view rest_of_file = file;
        const std::string_view component = next_component(rest_of_directory);
        if (component.empty() || component != next_component(rest_of_file))
            break;
        directory = rest_of_directory;
        file = rest_of_file;
    }
    String relative;
    while (!next_component(directory).empty()) {
        relative += path_separator();
        relative += "..";
    }
    String rest;
    add_components(rest, file);
    relative += rest;
    return relative.empty() ? relative : relative.substr(1);
}

String common_directory(std::string_view one, std::string_view other) {
    String common(1, path_separator());
    std::string_view name = next_component(one);
    while (!name.empty() && name == next_component(other)) {
        add_components(common, name);
        name = next_component(one);
    }
    return common;
}

String with_extension(std::string_view path, std::string_view extension) {
    const std::size_t dot = file_name_part(path).rfind('.');
    const std::size_t directory = path.size() - file_name_part(path).size();
    String result(dot == std::string_view::npos ? path : path.substr(0, directory + dot));
    result += '.';
    return result += extension;
}

} // namespace pellux
