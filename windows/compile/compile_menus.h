#pragma once

#include "windows/toolkit/resource.h"

#include <array>
#include <span>

namespace pellux {

inline constexpr int k_compile_menu_bar = 1300;

/// Tags of the commands about compiling, in the order of the menus. Those up to `locate_error` are
/// a project's, in any of its windows.
enum class CompileCommand : int {
    all = 1151,
    selected = 1152,
    smart = 1301,
    file = 1302,
    again = 1303,
    halt = 1304,
    simulate = 1305,
    open_waveform = 1306,
    last_compiles = 1307,
    go_to_next = 1311,
    go_to_previous = 1312,

    next_error = 1321,
    previous_error = 1322,
    locate_error = 1323,
    copy = 1331,
    select_all = 1332,
    find = 1333,
    save_text = 1341,
    close = 1342,
    quit = 1343,
    select_font = 1351,
    help_contents = 1361,
    help_messages = 1362,
};

/// The menu Compile, which a project's own bar has too.
inline constexpr int k_compile_menu = 1310;
inline constexpr std::array k_compile_menu_items{
    MenuResource{static_cast<int>(CompileCommand::all), "Compile &all", {}, "F7"},
    MenuResource{static_cast<int>(CompileCommand::selected), "Compile &selected", {}, "Ctrl+F7"},
    MenuResource{static_cast<int>(CompileCommand::smart), "Save and compile a&ll"},
    MenuResource{static_cast<int>(CompileCommand::file), "Compile &file in editor", {}, "F8"},
    MenuResource{static_cast<int>(CompileCommand::again), "Compile a&gain"},
    MenuResource{static_cast<int>(CompileCommand::halt), "&Halt"},
    MenuResource{},
    MenuResource{static_cast<int>(CompileCommand::simulate), "Si&mulate"},
    MenuResource{static_cast<int>(CompileCommand::open_waveform), "Open &waveform"},
    MenuResource{},
    MenuResource{static_cast<int>(CompileCommand::go_to_next), "Go to &next error", {}, "F4"},
    MenuResource{
        static_cast<int>(CompileCommand::go_to_previous), "Go to &previous error", {}, "Shift+F4"},
    MenuResource{},
    MenuResource{static_cast<int>(CompileCommand::last_compiles), "Last &compiles"},
};
/// The bar of a compile window.
[[nodiscard]] std::span<const MenuBarResource> compile_menu_bars();

} // namespace pellux
