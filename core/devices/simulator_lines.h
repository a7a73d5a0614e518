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

/// Adds the names of those in the installation's catalogue as it is now, in its order, up to the
/// first fault, which is answered; nobody is told.
[[nodiscard]] CatalogueStatus read_simulator_names(Vector<String>& names);

/// The first simulator of that very name in the catalogue's section "simulators_dos"; none without
/// catalogue or section.
[[nodiscard]] std::optional<SimulatorLine> find_simulator(CatalogueReader& reader,
                                                          std::string_view name);

} // namespace pellux
