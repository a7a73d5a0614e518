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

CatalogueStatus read_simulator_names(Vector<String>& names) {
    // The program's own reader would go on with the file that it has opened once.
    const Owned<CatalogueReader> reader = make_owned<CatalogueReader>();
    if (!open(*reader, true))
        return CatalogueStatus::no_file;
    CatalogueStatus status = find_section(*reader, "simulators_dos");
    CatalogueLine line;
    SimulatorLine simulator;
    while (status == CatalogueStatus::done) {
        status = next_line(*reader, line);
        if (status == CatalogueStatus::done && parse_simulator_line(line.view(), simulator))
            names.push_back(std::move(simulator.name));
    }
    return status == CatalogueStatus::at_end ? CatalogueStatus::done : status;
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
