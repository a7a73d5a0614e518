#pragma once

#include "core/common/containers.h"
#include "core/devices/catalogue_file.h"

namespace pellux {

// What the device catalogue has to choose from, for those who ask the user.

struct PackageChoice {
    String name;
    String pins;    ///< all of them, as it is written; may be empty
    String signals; ///< those for signals; may be empty
};
struct DeviceChoice {
    String name;   ///< of its section; what a project and a directive line call it
    String family; ///< the attribute "kind", one blank between its words; may be empty
    Vector<PackageChoice> packages;
};
struct DeviceChoices {
    Vector<DeviceChoice> devices; ///< in the catalogue's order, at most `k_device_choices_max`
    /// `done`, `no_file`, or the first fault that was met; what could be read is there all the
    /// same.
    CatalogueStatus status = CatalogueStatus::done;
};
/// Each of them is looked up in the whole index.
inline constexpr std::size_t k_device_choices_max = 2000;

/// Reads the catalogue of the installation as it is now, without a word to the user.
[[nodiscard]] DeviceChoices read_device_choices();

} // namespace pellux
