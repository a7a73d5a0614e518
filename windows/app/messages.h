#pragma once

#include "core/diagnostics/message.h"

namespace pellux {

inline Message<> msg_no_picture_window{"E2021", "Can't open window"};
inline Message<const char*> msg_cannot_open_help{"E2022", "Can't open help file '%s'."};
inline Message<> msg_find_help{"E2023", "Please Find and Open help file..."};
inline Message<> msg_help_unreadable{"E2024", "Help file is unreadable, please choose another."};
inline Message<> msg_help_invalid{"E2025", "Invalid help file, please choose another."};
inline Message<int> msg_exiting{"E2026", "Exiting with code %d."};
inline Message<const char*> msg_version{"E2027", "Version %s"};
inline Message<> msg_picture_line{"E2028", "Write, compile and simulate VHDL designs."};
inline Message<const char*, const char*> msg_tool_missing{
    "E2029", "Can't run '%s'.\nTo have it, install the package '%s'."};
inline Message<const char*, const char*> msg_cannot_read_tools{"E2030", "Can't read '%s': %s."};
inline Message<> msg_no_waveform_viewer{
    "E2031", "The Tools menu has no tool with \"waveform\" in its label, to show it."};

} // namespace pellux
