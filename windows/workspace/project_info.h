#pragma once

#include "windows/toolkit/event.h"

namespace pellux {

// The commands of a project's window that show texts to read.

/// Enables those about files beside the top design, by what lies there now.
void update_info_commands(Window project);
/// The compiler's report about the top design.
void show_report_file(Window project);
/// The top design's control file.
void show_control_file(Window project);
/// Of this run of the program.
void show_last_compiles();
/// What runs here, and where it lies: this program, the compiler and GHDL.
void show_tool_versions();

} // namespace pellux
