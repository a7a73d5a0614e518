#pragma once

#include "tools/devices/catalogue_finding.h"

namespace pellux {

/// The bytes of a "devices.dat", and for each of its lines the number of the source's line that it
/// comes from; 0 for lines of the index.
struct BuiltCatalogue {
    String file;
    Vector<int> source_lines;
};

/// Makes "devices.dat" from its source (docs/formats.md). With findings it is not to be used.
[[nodiscard]] BuiltCatalogue build_catalogue(std::string_view source,
                                             Vector<CatalogueFinding>& findings);

} // namespace pellux
