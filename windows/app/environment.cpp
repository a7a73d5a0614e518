#include "windows/app/environment.h"

#include "core/common/containers.h"
#include "core/os/environment.h"

namespace pellux {
namespace {

/// Puts `place` in front of what the variable holds.
void put_in_front(const char* name, String place) {
    const char* old = environment_variable(name);
    if (old != nullptr && *old != '\0') {
        place += ';';
        place += old;
    }
    set_environment_variable(name, place.c_str());
}

} // namespace

void install_search_paths() {
    const char* install = installation_directory();
    String bin(install == nullptr ? "." : install);
    bin += "/bin";
    put_in_front("XVTPATH", bin);
    put_in_front("UIDPATH", bin + "/%N.uid");
    set_environment_variable("HELP", bin.c_str());
}

} // namespace pellux
