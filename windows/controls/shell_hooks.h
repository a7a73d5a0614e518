#pragma once

#include "windows/toolkit/event.h"

#include <string_view>

namespace pellux {

/// What windows of all kinds want of the program around them, which fills it in.
struct ShellHooks {
    /// Takes note of where the task window stands.
    void (*remember_placement)(void* context) = nullptr;
    /// Writes the settings and destroys the application, since no project is open any more.
    void (*end_application)(void* context) = nullptr;
    /// The command Quit, with its question.
    void (*quit)(void* context) = nullptr;
    void (*show_help_contents)(void* context) = nullptr;
    /// Puts the Tools menu into a window's menus, before the menu `k_help_menu`.
    void (*insert_tools_menu)(void* context, Window window) = nullptr;
    /// Runs the tool of a menu's tag, when it is one's.
    void (*run_tool)(void* context, int tag) = nullptr;
    /// Shows a waveform in the viewer that the Tools menu has.
    void (*open_waveform)(void* context, std::string_view path) = nullptr;
    void* context = nullptr;
};

inline constexpr int k_help_menu = 1002; ///< tag of it in every menu bar

/// One for the process.
void install_shell(const ShellHooks& hooks);
[[nodiscard]] const ShellHooks& shell();

} // namespace pellux
