#include "core/devices/device_choices.h"

#include "core/common/blanks.h"
#include "core/devices/device_catalogue.h"

#include <algorithm>

namespace pellux {
namespace {

constexpr std::string_view k_family_attribute = "kind";

void note_fault(DeviceChoices& choices, CatalogueStatus status) {
    const bool is_fault = status != CatalogueStatus::at_end && status != CatalogueStatus::missing;
    if (is_fault && choices.status == CatalogueStatus::done)
        choices.status = status;
}

/// Calls `take` with each line of a block of the section that is open, and leaves the block.
template <typename Take>
void read_block(CatalogueReader& reader, std::string_view name, DeviceChoices& choices, Take take) {
    CatalogueLine line;
    CatalogueStatus status = find_block(reader, name, line);
    if (status != CatalogueStatus::done) {
        note_fault(choices, status);
        return;
    }
    while ((status = next_line(reader, line)) == CatalogueStatus::done)
        take(line.view());
    note_fault(choices, status);
    static_cast<void>(close_range(reader));
}

void take_attribute(std::string_view line, DeviceChoice& device) {
    std::string_view word;
    if (!next_word(line, word) || word != k_family_attribute)
        return;
    device.family.clear();
    while (next_word(line, word))
        (device.family += device.family.empty() ? "" : " ") += word;
}

void take_package(std::string_view line, DeviceChoice& device) {
    std::string_view name;
    if (!next_word(line, name))
        return;
    PackageChoice& package = device.packages.emplace_back();
    package.name = name;
    std::string_view word;
    for (String* field : {&package.pins, &package.signals})
        if (next_word(line, word))
            *field = word;
}

DeviceChoice read_device(CatalogueReader& reader, std::string_view name, DeviceChoices& choices) {
    DeviceChoice device;
    device.name = name;
    const CatalogueStatus status = find_section(reader, name);
    note_fault(choices, status);
    if (status != CatalogueStatus::done)
        return device;
    read_block(reader, "attributes", choices,
               [&device](std::string_view line) { take_attribute(line, device); });
    read_block(reader, "packages", choices,
               [&device](std::string_view line) { take_package(line, device); });
    return device;
}

} // namespace

DeviceChoices read_device_choices() {
    DeviceChoices choices;
    // The program's own reader would go on with the file that it has opened once.
    const Owned<CatalogueReader> reader = make_owned<CatalogueReader>();
    if (!open(*reader, true)) {
        choices.status = CatalogueStatus::no_file;
        return choices;
    }
    CatalogueLine name;
    CatalogueStatus status = CatalogueStatus::done;
    while (choices.devices.size() < k_device_choices_max &&
           (status = next_device_name(*reader, name)) == CatalogueStatus::done)
        if (std::ranges::find(choices.devices, name.view(), &DeviceChoice::name) ==
            choices.devices.end())
            choices.devices.push_back(read_device(*reader, name.view(), choices));
    note_fault(choices, status);
    return choices;
}

} // namespace pellux
