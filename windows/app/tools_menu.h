#pragma once

#include "core/devices/tool_lines.h"
#include "windows/toolkit/event.h"

namespace pellux {

// The Tools menu: programs that the device catalogue names, and those that the user has named in
// the file `Pellux.tools` beside the settings. Without any there is none.

inline constexpr int k_tools_menu = 5100;
inline constexpr int k_first_tool = 5000; ///< tag of the first tool, the others follow

/// The tools, read when they are first wanted.
struct ToolsMenu {
    Vector<ToolLine> tools;
    std::size_t installed = 0; ///< how many of them are the catalogue's: the first ones
    bool is_read = false;
};

/// Puts the menu in front of the window's Help menu.
void insert_tools_menu(ToolsMenu& menu, Window window);
/// Runs the tool of a tag in the current directory; false when the tag is no tool's.
bool run_tool(ToolsMenu& menu, int tag);
/// Runs the waveform viewer with a file: the tool whose label says "waveform", of which the user's
/// own goes first.
void open_waveform(ToolsMenu& menu, std::string_view path);

} // namespace pellux
