#include "windows/workspace/device_pick.h"

#include "core/common/blanks.h"
#include "core/os/ascii.h"

#include <algorithm>

namespace pellux {
namespace {

bool contains(std::string_view text, std::string_view part) {
    const auto is_same = [](char a, char b) { return ascii_lower(a) == ascii_lower(b); };
    return std::search(text.begin(), text.end(), part.begin(), part.end(), is_same) != text.end();
}

bool passes(std::string_view filter, std::string_view name, std::string_view family) {
    std::string_view word;
    while (next_word(filter, word))
        if (!contains(name, word) && !contains(family, word))
            return false;
    return true;
}

const DeviceChoice* find_device(const DevicePick& pick, std::string_view name) {
    const auto found = std::ranges::find(pick.catalogue, name, &DeviceChoice::name);
    return found == pick.catalogue.end() ? nullptr : &*found;
}

bool has_entry(const Vector<PickEntry>& entries, std::string_view name) {
    return std::ranges::find(entries, name, &PickEntry::name) != entries.end();
}

int index_of(const Vector<PickEntry>& entries, std::string_view name) {
    const auto found = std::ranges::find(entries, name, &PickEntry::name);
    return found == entries.end() ? -1 : static_cast<int>(found - entries.begin());
}

bool has_filter(const DevicePick& pick) {
    return !trim_blanks(view(pick.filter)).empty();
}

const PickEntry* at(const Vector<PickEntry>& entries, int index) {
    return index >= 0 && index < static_cast<int>(entries.size())
               ? &entries[static_cast<std::size_t>(index)]
               : nullptr;
}

} // namespace

Vector<PickEntry> devices_of(const DevicePick& pick) {
    Vector<PickEntry> devices;
    if (!has_filter(pick))
        devices.emplace_back();
    for (const DevicePackage& named : pick.named)
        if (!named.device.empty() && find_device(pick, named.device) == nullptr &&
            !has_entry(devices, named.device) && passes(view(pick.filter), named.device, {}))
            devices.push_back({.name = named.device, .is_known = false});
    for (const DeviceChoice& device : pick.catalogue)
        if (passes(view(pick.filter), view(device.name), view(device.family)))
            devices.push_back({.name = device.name, .more = {device.family}});
    return devices;
}

int selected_device(const DevicePick& pick, const Vector<PickEntry>& devices) {
    const int wanted = index_of(devices, view(pick.wanted.device));
    return wanted < 0 && !devices.empty() ? 0 : wanted;
}

String device_of(const DevicePick& pick) {
    const Vector<PickEntry> devices = devices_of(pick);
    const PickEntry* selected = at(devices, selected_device(pick, devices));
    return selected == nullptr ? pick.wanted.device : selected->name;
}

Vector<PickEntry> packages_of(const DevicePick& pick) {
    Vector<PickEntry> packages(1);
    const String device = device_of(pick);
    if (const DeviceChoice* found = find_device(pick, view(device)))
        for (const PackageChoice& package : found->packages)
            packages.push_back({.name = package.name, .more = {package.pins, package.signals}});
    Vector<PickEntry> unknown;
    for (const DevicePackage& named : pick.named)
        if (named.device == device && !has_entry(packages, view(named.package)) &&
            !has_entry(unknown, view(named.package)))
            unknown.push_back({.name = named.package, .is_known = false});
    packages.insert(packages.begin() + 1, unknown.begin(), unknown.end());
    return packages;
}

int selected_package(const DevicePick& pick, const Vector<PickEntry>& packages) {
    return std::max(0, index_of(packages, view(pick.wanted.package)));
}

DevicePackage chosen_of(const DevicePick& pick) {
    const Vector<PickEntry> packages = packages_of(pick);
    return {device_of(pick), at(packages, selected_package(pick, packages))->name};
}

void choose_device(DevicePick& pick, int index) {
    const Vector<PickEntry> devices = devices_of(pick);
    if (const PickEntry* chosen = at(devices, index))
        pick.wanted.device = chosen->name;
}

void choose_package(DevicePick& pick, int index) {
    const Vector<PickEntry> packages = packages_of(pick);
    if (const PickEntry* chosen = at(packages, index))
        pick.wanted = {device_of(pick), chosen->name};
}

void take_over(DevicePick& pick, const DevicePackage& said) {
    DevicePackage taken = chosen_of(pick);
    if (!said.device.empty())
        taken.device = said.device;
    if (!said.package.empty())
        taken.package = said.package;
    pick.filter.clear();
    pick.wanted = taken;
    pick.named.push_back({taken.device, said.package});
}

} // namespace pellux
