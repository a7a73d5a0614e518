#pragma once

#include "core/diagnostics/message.h"

namespace pellux {

// What the catalogue alone has a text for says nothing without it but its number, and, where it has
// one, its argument.
inline Message<> msg_catalogue_no_index{"E1800", ""};
inline Message<> msg_catalogue_listed_twice{"E1801", ""};
inline Message<> msg_catalogue_missing{"E1803", ""};
inline Message<> msg_catalogue_no_file{"E1804", "Could not find 'devices.dat'."};
inline Message<const char*> msg_catalogue_long_line{"E1805", "%s"};
inline Message<> msg_catalogue_no_block{"E1806", ""};
inline Message<> msg_catalogue_no_block_end{"E1807", ""};
inline Message<> msg_catalogue_no_comma{"E1808", ""};
inline Message<> msg_catalogue_bad_entry{
    "E1824", "An entry of the index of 'devices.dat' leads out of the file."};
inline Message<> msg_catalogue_too_deep{"E1825", "The blocks of 'devices.dat' nest too deep."};

} // namespace pellux
