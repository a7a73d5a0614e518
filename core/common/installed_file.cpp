#include "core/common/installed_file.h"

#include "core/os/environment.h"
#include "core/os/files.h"

namespace pellux {

bool find_installed_file(std::string_view name, PathBuffer& path) {
    if (const char* install = installation_directory())
        return path.assign(install) && path.join("bin") && path.join(name);
    if (path.assign(name) && file_exists(path.view()))
        return true;
    const char* variable = environment_variable("PATH");
    std::string_view list = variable == nullptr ? "" : variable;
    std::string_view directory;
    while (next_list_entry(list, directory))
        if (path.assign(directory) && path.join(name) && file_exists(path.view()))
            return true;
    return false;
}

} // namespace pellux
