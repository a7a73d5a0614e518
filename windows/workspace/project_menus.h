#pragma once

#include "windows/toolkit/resource.h"

#include <span>

namespace pellux {

inline constexpr int k_project_menu_bar = 1019;
inline constexpr int k_files_menu = 1059;

/// Tags of a project's commands, in the order of its menus; the last ones stand in the list's menu
/// alone.
enum class ProjectCommand : int {
    new_project = 1021,
    open = 1044,
    close = 1045,
    save = 1046,
    device = 1160,
    print = 1047,
    print_setup = 1048,
    quit = 1049,
    undo = 1153,
    redo = 1154,
    options = 1156,
    file_options = 1157,
    add = 1060,
    add_all = 1106,
    add_pla = 1107,
    remove = 1057,
    cut = 1054,
    copy = 1055,
    paste = 1056,
    select_all = 1058,
    move_up = 1052,
    move_down = 1050,
    libraries = 1084,
    annotate = 1101,
    report_file = 1104,
    control_file = 1043,
    source_file = 1096,
    tool_versions = 1102,
    search_project = 1098,
    search_selected = 1099,
    search_vhdl = 1100,
    select_font = 32051,
    help_contents = 1063,
    toggle_top = 1150,
};

[[nodiscard]] std::span<const MenuBarResource> project_menu_bars();

} // namespace pellux
