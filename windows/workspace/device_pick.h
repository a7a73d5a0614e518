#pragma once

#include "core/devices/device_choices.h"

#include <string_view>

namespace pellux {

/// A device and a package of it, by their names; empty: none.
struct DevicePackage {
    String device;
    String package;

    bool operator==(const DevicePackage&) const = default;
};

/// A device or package that can be chosen.
struct PickEntry {
    String name;           ///< empty: none
    bool is_known = true;  ///< to the catalogue
    Vector<String> more{}; ///< of a device its family, of a package its pins and those for signals
};

/// What the user makes of the catalogue's devices while choosing one.
///
/// What is chosen is what is shown as selected. A filter that leaves the wanted device out selects
/// the first one that it lets through, and the wanted one again as soon as that is to be seen. A
/// package goes along with another device that has one of its name, and else comes back with its
/// own.
struct DevicePick {
    Vector<DeviceChoice> catalogue;
    DevicePackage wanted;        ///< as it was at first, or as the user chose last
    Vector<DevicePackage> named; ///< by the project or a file; the catalogue may lack them
    String filter;               ///< words, any part of a device's or its family's name
};

/// None first, unless there is a filter.
[[nodiscard]] Vector<PickEntry> devices_of(const DevicePick& pick);
/// The index of the selected one; -1 when none is shown, and then the wanted one stays.
[[nodiscard]] int selected_device(const DevicePick& pick, const Vector<PickEntry>& devices);
/// The device that is chosen by now.
[[nodiscard]] String device_of(const DevicePick& pick);
/// Those of that device, none first.
[[nodiscard]] Vector<PickEntry> packages_of(const DevicePick& pick);
[[nodiscard]] int selected_package(const DevicePick& pick, const Vector<PickEntry>& packages);
[[nodiscard]] DevicePackage chosen_of(const DevicePick& pick);

/// The user chooses an entry of `devices_of` or `packages_of`.
void choose_device(DevicePick& pick, int index);
void choose_package(DevicePick& pick, int index);
/// Takes over what a file names, whatever the filter; a part that is empty stays as it is chosen.
void take_over(DevicePick& pick, const DevicePackage& said);

} // namespace pellux
