#include "windows/app/environment.h"

#include "core/common/containers.h"
#include "core/os/environment.h"

namespace pellux {
namespace {

std::string_view value_or_nothing(const char* name) {
    const char* value = environment_variable(name);
    return value == nullptr ? "" : value;
}

/// Puts `place` in front of what the variable holds.
void put_in_front(const char* name, String place) {
    const std::string_view old = value_or_nothing(name);
    if (!old.empty()) {
        place += ';';
        place += old;
    }
    set_environment_variable(name, place.c_str());
}

} // namespace

void install_search_paths() {
    String bin(value_or_nothing("VELMORA_DIR"));
    if (bin.empty())
        bin = ".";
    bin += "/bin";
    put_in_front("XVTPATH", bin);
    put_in_front("UIDPATH", bin + "/%N.uid");
    set_environment_variable("HELP", bin.c_str());
}

} // namespace pellux
