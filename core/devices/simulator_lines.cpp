#include "core/devices/simulator_lines.h"

#include "core/common/blanks.h"
#include "core/devices/device_catalogue.h"

namespace pellux {

bool parse_simulator_line(std::string_view line, SimulatorLine& simulator) {
    std::string_view rest = trim_blanks(line);
    std::string_view name;
    if (rest.starts_with('"')) {
        rest.remove_prefix(1);
        const std::size_t end = rest.find('"');
        if (end == std::string_view::npos)
            return false;
        name = rest.substr(0, end);
        rest.remove_prefix(end + 1);
    } else if (!next_word(rest, name)) {
        return false;
    }
    rest = trim_blanks(rest);
    if (name.empty() || rest.empty())
        return false;
    simulator = {String(name), String(rest)};
    return true;
}

Vector<String> simulator_names(CatalogueReader& reader) {
    Vector<String> names;
    if (!open(reader, true) || !seekSection(reader, "simulators_dos", true))
        return names;
    CatalogueLine line;
    SimulatorLine simulator;
    while (next_line(reader, line) == CatalogueStatus::done)
        if (parse_simulator_line(line.view(), simulator))
            names.push_back(std::move(simulator.name));
    return names;
}

std::optional<SimulatorLine> find_simulator(CatalogueReader& reader, std::string_view name) {
    if (!open(reader, true) || !seekSection(reader, "simulators_dos", true))
        return {};
    CatalogueLine line;
    while (next_line(reader, line) == CatalogueStatus::done) {
        SimulatorLine simulator;
        if (parse_simulator_line(line.view(), simulator) && view(simulator.name) == name)
            return simulator;
    }
    return {};
}

} // namespace pellux
