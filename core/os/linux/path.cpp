#include "core/os/path.h"

namespace pellux {

char path_separator() {
    return '/';
}

bool is_separator(char c) {
    return c == '/';
}

bool is_absolute(std::string_view path) {
    return !path.empty() && path.front() == '/';
}

} // namespace pellux
