#pragma once

#include "windows/toolkit/event.h"

namespace pellux {

/// What the windows of projects want of the program around them.
struct ShellHooks {
    /// Takes note of where the task window stands.
    void (*remember_placement)(void* context) = nullptr;
    /// Writes the settings and destroys the application, since no project is open any more.
    void (*end_application)(void* context) = nullptr;
    /// The command Quit, with its question.
    void (*quit)(void* context) = nullptr;
    void (*show_help_contents)(void* context) = nullptr;
    /// Puts the Tools menu into a window's menus.
    void (*insert_tools_menu)(void* context, Window window) = nullptr;
    /// Runs the tool of a menu's tag, when it is one's.
    void (*run_tool)(void* context, int tag) = nullptr;
    void* context = nullptr;
};

} // namespace pellux
