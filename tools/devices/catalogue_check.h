#pragma once

#include "tools/devices/catalogue_finding.h"

namespace pellux {

/// What is wrong in the bytes of a "devices.dat": every byte behind the index must belong to one
/// section, every section hold whole lines of bounded length, and every block have its two ends and
/// be the one that a reader finds by its name. A damaged index hides all else.
[[nodiscard]] Vector<CatalogueFinding> check_catalogue(std::string_view file);

} // namespace pellux
