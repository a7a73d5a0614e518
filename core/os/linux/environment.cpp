#include "core/os/environment.h"

#include "core/os/files.h"

#include <cstdlib>
#include <cstring>

#include <langinfo.h>
#include <locale.h>
#include <unistd.h>

namespace pellux {

namespace {

/// A directory of the user's: named by `variable`, else `standard` in the home directory.
bool user_directory(const char* variable, std::string_view standard, std::string_view own,
                    PathBuffer& path) {
    const char* value = environment_variable(variable);
    if (value != nullptr && is_absolute(value))
        return path.assign(value) && path.join(own);
    const char* home = environment_variable("HOME");
    if (home == nullptr || !is_absolute(home)) {
        path.clear();
        return false;
    }
    return path.assign(home) && path.join(standard) && path.join(own);
}

} // namespace

const char* environment_variable(const char* name) {
    return std::getenv(name);
}

void set_environment_variable(const char* name, const char* value) {
    if (value == nullptr)
        ::unsetenv(name);
    else
        ::setenv(name, value, 1);
}

bool next_list_entry(std::string_view& list, std::string_view& entry, char cut) {
    const char separator = cut != 0 ? cut : ':';
    while (!list.empty()) {
        const std::size_t end = list.find(separator);
        const std::string_view piece = list.substr(0, end);
        list = end == std::string_view::npos ? std::string_view() : list.substr(end + 1);
        if (!piece.empty()) {
            entry = piece;
            return true;
        }
    }
    return false;
}

bool settings_directory(PathBuffer& path) {
    return user_directory("XDG_CONFIG_HOME", ".config", "Velmora", path);
}

bool state_directory(PathBuffer& path) {
    return user_directory("XDG_STATE_HOME", ".local/state", "pellux", path);
}

bool cache_directory(PathBuffer& path) {
    return user_directory("XDG_CACHE_HOME", ".cache", "pellux", path);
}

bool program_directory(PathBuffer& path) {
    PathBuffer program;
    return !failed(read_link("/proc/self/exe", program)) &&
           path.assign(directory_part(program.view()));
}

std::uint32_t current_user() {
    return ::geteuid();
}

bool locale_is_utf_8() {
    const locale_t locale = ::newlocale(LC_CTYPE_MASK, "", nullptr);
    if (locale != nullptr) {
        const std::string_view codeset = ::nl_langinfo_l(CODESET, locale);
        const bool is_utf8 = codeset == "UTF-8";
        ::freelocale(locale);
        return is_utf8;
    }
    // One that is not installed still says by its name what is meant.
    for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const char* value = environment_variable(name);
        if (value != nullptr && *value != '\0')
            return ::strcasestr(value, "utf-8") != nullptr ||
                   ::strcasestr(value, "utf8") != nullptr;
    }
    return false;
}

} // namespace pellux
