#pragma once

#include "core/common/containers.h"
#include "core/devices/catalogue_file.h"

#include <optional>
#include <string_view>

namespace pellux {

/// A simulator, and the command that makes its file, as it is written.
struct SimulatorLine {
    String name;
    String command; ///< without blanks in front
};

/// Takes a line apart: the name stands in double quotes or reaches to the first blank. False
/// without a name or a command.
[[nodiscard]] bool parse_simulator_line(std::string_view line, SimulatorLine& simulator);

/// The names of all of them, in the catalogue's order; none without catalogue or section.
[[nodiscard]] Vector<String> simulator_names(CatalogueReader& reader);

/// The first simulator of that very name in the catalogue's section "simulators_dos"; none without
/// catalogue or section.
[[nodiscard]] std::optional<SimulatorLine> find_simulator(CatalogueReader& reader,
                                                          std::string_view name);

} // namespace pellux
