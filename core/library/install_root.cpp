#include "core/library/install_root.h"

#include "core/os/environment.h"
#include "core/os/files.h"

namespace pellux {
namespace {

/// The directory of the compiler along `PATH`, as it stands there.
bool find_compiler_directory(PathBuffer& directory) {
    const char* variable = environment_variable("PATH");
    std::string_view list = variable == nullptr ? "" : variable;
    std::string_view entry;
    PathBuffer program;
    while (next_list_entry(list, entry)) {
        constexpr std::uint32_t k_executable = 0111;
        FileStat stat;
        if (program.assign(entry) && program.join("BRIX.EXE") &&
            !failed(stat_file(program.view(), stat)) && stat.kind == FileKind::regular &&
            (stat.mode & k_executable) != 0)
            return directory.assign(directory_part(program.view()));
    }
    return false;
}

bool is_root(const PathBuffer& directory) {
    PathBuffer resolved;
    return !failed(real_path(directory.view(), resolved)) &&
           directory_part(resolved.view()) == resolved.view();
}

/// Goes one level up: the last component goes or, where there is none to go, ".." comes. False
/// above the root.
bool climb(PathBuffer& directory) {
    const std::string_view last = file_name_part(directory.view());
    if (last.empty() || last == ".")
        return directory.join("..");
    if (last == "..")
        return !is_root(directory) && directory.join("..");
    return directory.assign(directory_part(directory.view()));
}

/// Follows the links of `path` as far as it exists; what is missing of it has none.
bool resolve_place(std::string_view path, PathBuffer& place) {
    std::string_view root = path;
    while (directory_part(root) != root)
        root = directory_part(root);
    if (root.empty() ? failed(current_directory(place)) : !place.assign(root))
        return false;
    path.remove_prefix(root.size());
    while (!path.empty()) {
        std::size_t length = 0;
        while (length < path.size() && !is_separator(path[length]))
            ++length;
        const std::string_view part = path.substr(0, length);
        path.remove_prefix(length < path.size() ? length + 1 : length);
        if (part.empty() || part == ".")
            continue;
        if (!(part == ".." ? place.assign(directory_part(place.view())) : place.join(part)))
            return false;
        PathBuffer resolved;
        if (!failed(real_path(place.view(), resolved)))
            place = resolved;
    }
    return true;
}

} // namespace

bool find_install_library_root(PathBuffer& root) {
    const char* install = installation_directory();
    if (install != nullptr && root.assign(install) && root.join("lib") && file_exists(root.view()))
        return true;
    PathBuffer directory;
    if (find_compiler_directory(directory)) {
        while (climb(directory)) {
            root = directory;
            if (root.join("lib") && file_exists(root.view()))
                return true;
        }
    }
    root.clear();
    return false;
}

bool is_inside_install_root(std::string_view directory) {
    PathBuffer root;
    PathBuffer resolved_root;
    PathBuffer place;
    if (!find_install_library_root(root) || failed(real_path(root.view(), resolved_root)) ||
        !resolve_place(directory, place) || !place.view().starts_with(resolved_root.view()))
        return false;
    const std::string_view rest = place.view().substr(resolved_root.view().size());
    return rest.empty() || is_separator(rest.front());
}

} // namespace pellux
