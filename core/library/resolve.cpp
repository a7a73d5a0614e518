#include "core/library/resolve.h"

#include "core/common/ascii_case.h"
#include "core/common/callback.h"
#include "core/os/environment.h"
#include "core/os/files.h"

#include <algorithm>

namespace pellux {
namespace {

struct Search {
    std::string_view name;
    std::string_view directory;
    String found; ///< the first in byte order, so that every run finds the same
};

bool compare_entry(void* context, std::string_view entry, FileKind) {
    auto& search = from_context<Search>(context);
    PathBuffer path;
    FileStat stat;
    if (same_ignoring_case(entry, search.name) && path.assign(search.directory) &&
        path.join(entry) && !failed(stat_file(path.view(), stat)) &&
        stat.kind == FileKind::directory && (search.found.empty() || entry < search.found))
        search.found = entry;
    return true;
}

/// What `directory` calls `name`; empty when it has nothing of that name.
String name_in(std::string_view directory, std::string_view name) {
    PathBuffer path;
    if (path.assign(directory) && path.join(name) && file_exists(path.view()))
        return String(name);
    Search search{name, directory, {}};
    static_cast<void>(list_directory(directory, compare_entry, &search));
    return search.found;
}

/// A name that could lead elsewhere is a path of the user's, and no library of an installation.
bool is_plain_name(std::string_view name) {
    return !name.empty() && name != "." && name != ".." &&
           std::none_of(name.begin(), name.end(), is_separator);
}

bool find_installed(std::string_view name, PathBuffer& path) {
    const char* install = installation_directory();
    if (install == nullptr || !path.assign(install) || !path.join("lib"))
        return false;
    const String found = name_in(path.view(), name);
    return !found.empty() && path.join(view(found)) && path.join("work") &&
           file_exists(path.view());
}

} // namespace

LibraryDirectory resolve_library(const RcFile& file, std::string_view name) {
    LibraryDirectory directory;
    if (find_assigned_directory(file, name, directory.path)) {
        directory.rule = LibraryRule::assigned;
        return directory;
    }
    if (!is_plain_name(name)) {
        directory.path = name;
        directory.rule = file_exists(name) ? LibraryRule::local : LibraryRule::itself;
        return directory;
    }
    directory.path = name_in(".", name);
    PathBuffer installed;
    if (!directory.path.empty()) {
        directory.rule = LibraryRule::local;
    } else if (find_installed(name, installed)) {
        directory.path = installed.view();
        directory.rule = LibraryRule::installed;
    } else {
        directory.path = lower_case(name);
    }
    return directory;
}

} // namespace pellux
